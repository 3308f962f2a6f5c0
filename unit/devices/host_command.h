#pragma once

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace unit {

// A command line of the host that can be started again and again. /bin/sh runs it in the
// background, its output going to the standard error. One runs at a time: however often it is
// started meanwhile, it is run once more afterwards. Any thread.
class HostCommand {
  public:
    using Say = std::function<void(const std::string&)>;

    // `say` takes one line, on a thread of its own, when a command fails or takes longer than
    // `patience` of the host's time; it begins with `name`.
    HostCommand(std::string name, std::string command, Say say,
                std::chrono::milliseconds patience = std::chrono::seconds(10));
    // Ends a command that still runs, and what it has started.
    ~HostCommand();
    HostCommand(const HostCommand&) = delete;
    HostCommand& operator=(const HostCommand&) = delete;

    // Never waits.
    void Start();

  private:
    void RunUntilEnded();
    void RunOnce();
    pid_t Spawn() const;
    bool IsEnding();
    void AwaitEnd(pid_t shell, int watch) const;

    const std::string name_;
    const std::string command_;
    const Say say_;
    const std::chrono::milliseconds patience_;
    // Readable once the destructor has begun.
    const int ending_event_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool wanted_ = false;
    bool ending_ = false;
    std::thread runner_;
};

}  // namespace unit
