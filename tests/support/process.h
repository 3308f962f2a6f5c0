#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tests {

// Starts built programs as an engineer does and checks exit status, output and files. Every test
// has its own folder, which is also the user's runtime folder.
class Process : public testing::Test {
  protected:
    Process();
    // Ends processes that still run.
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

    // Checks every few milliseconds of host time; false after a minute.
    static bool WaitUntil(const std::function<bool()>& condition);

    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    std::string Read(const std::string& name) const;

  private:
    std::string folder_;
    std::vector<pid_t> running_;
};

}  // namespace tests
