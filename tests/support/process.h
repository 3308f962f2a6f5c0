#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tests {

// Built programs as an engineer starts them: options in, exit status, lines and files out. Every
// test has a folder of its own, which is the user's runtime folder too.
class Process : public testing::Test {
  protected:
    Process();
    // Ends what still runs.
    ~Process() override;

    // Output and errors go to files "out" and "err" of the test's folder, with `tag` before them.
    pid_t Start(const std::string& program, std::vector<std::string> arguments,
                const std::string& tag = "");
    // The exit status, or the negative number of the signal that ended it.
    int Wait(pid_t child);
    int Run(const std::string& program, const std::vector<std::string>& arguments,
            const std::string& tag = "") {
        return Wait(Start(program, arguments, tag));
    }

    // Looks every few milliseconds of the host's time; false after a minute.
    static bool WaitUntil(const std::function<bool()>& condition);

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    std::string Read(const std::string& name) const;

  private:
    std::string folder_;
    std::vector<pid_t> running_;
};

}  // namespace tests
