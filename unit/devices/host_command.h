#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace unit {

// A command line of the host that can be started repeatedly. /bin/sh runs it in the background with
// its output on the standard error. One runs at a time; all starts during a run cause one more run.
// Any thread.
class HostCommand {
  public:
    using Say = std::function<void(const std::string&)>;

    // `say` is given one line, which begins with `name`, when a command fails or takes longer than
    // `limit` of the host's time. Called on a thread of its own.
    HostCommand(std::string name, std::string command, Say say,
                std::chrono::milliseconds limit = std::chrono::seconds(10));
    // Ends a running command and the processes that it started.
    ~HostCommand();
    HostCommand(const HostCommand&) = delete;
    HostCommand& operator=(const HostCommand&) = delete;

    // Does not wait. The result is the problem of the run that this causes, or empty.
    std::shared_future<std::string> Start();

  private:
    void RunUntilEnded();
    // Returns the problem, or an empty text.
    std::string RunOnce();
    pid_t Spawn() const;
    bool IsEnding();
    void AwaitEnd(pid_t shell, int watch) const;

    const std::string name_;
    const std::string command_;
    const Say say_;
    const std::chrono::milliseconds limit_;
    // Readable when the destructor has begun.
    const int ending_event_;
    std::mutex mutex_;
    std::condition_variable changed_;
    // Of the next run, if one is wanted.
    std::optional<std::promise<std::string>> wanted_;
    std::shared_future<std::string> result_;
    bool ending_ = false;
    std::thread runner_;
};

}  // namespace unit
