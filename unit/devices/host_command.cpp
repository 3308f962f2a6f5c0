#include "unit/devices/host_command.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

namespace unit {
namespace {

// Time between SIGTERM and SIGKILL.
constexpr int kGraceMilliseconds = 500;

// Returns how many of the two descriptors are readable; -1 means no descriptor. Waits without limit
// for a negative time.
int Wait(int first, int second, int milliseconds) {
    pollfd watched[] = {{first, POLLIN, 0}, {second, POLLIN, 0}};
    int count = -1;
    while ((count = poll(watched, std::size(watched), milliseconds)) < 0 && errno == EINTR)
        continue;
    return count;
}

std::string Seconds(std::chrono::milliseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%g s", static_cast<double>(time.count()) / 1000);
    return text;
}

std::string HowItEnded(int status) {
    if (WIFSIGNALED(status))
        return "was ended by signal " + std::to_string(WTERMSIG(status));
    return "failed with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

HostCommand::HostCommand(std::string name, std::string command, Say say,
                         std::chrono::milliseconds limit)
    : name_(std::move(name)),
      command_(std::move(command)),
      say_(std::move(say)),
      limit_(limit),
      ending_event_(eventfd(0, EFD_CLOEXEC)),
      runner_([this] { RunUntilEnded(); }) {}

HostCommand::~HostCommand() {
    {
        const std::scoped_lock lock(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    eventfd_write(ending_event_, 1);
    runner_.join();
    close(ending_event_);
}

std::shared_future<std::string> HostCommand::Start() {
    const std::scoped_lock lock(mutex_);
    if (!wanted_)
        result_ = wanted_.emplace().get_future().share();
    changed_.notify_one();
    return result_;
}

void HostCommand::RunUntilEnded() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return wanted_ || ending_; });
        if (ending_)
            return;
        std::promise<std::string> result = *std::exchange(wanted_, std::nullopt);
        lock.unlock();
        const std::string problem = RunOnce();
        if (!problem.empty() && !IsEnding())
            say_(problem);
        result.set_value(problem);
        lock.lock();
    }
}

// Returns -1 with errno set on failure.
pid_t HostCommand::Spawn() const {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, STDERR_FILENO, STDOUT_FILENO);
    // Its own process group, so it can be ended as a whole, and no blocked signals.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::string command = command_;
    char* arguments[] = {shell.data(), option.data(), command.data(), nullptr};
    pid_t child = -1;
    const int error = posix_spawn(&child, shell.c_str(), &files, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    errno = error;
    return error == 0 ? child : -1;
}

std::string HostCommand::RunOnce() {
    const pid_t shell = Spawn();
    if (shell < 0)
        return name_ + " cannot be run: " + std::strerror(errno);
    const int watch = static_cast<int>(syscall(SYS_pidfd_open, shell, 0));
    AwaitEnd(shell, watch);
    close(watch);
    int status = 0;
    waitpid(shell, &status, 0);
    return status == 0 ? "" : name_ + " " + HowItEnded(status) + ": " + command_;
}

bool HostCommand::IsEnding() {
    const std::scoped_lock lock(mutex_);
    return ending_;
}

void HostCommand::AwaitEnd(pid_t shell, int watch) const {
    if (Wait(watch, ending_event_, static_cast<int>(limit_.count())) == 0)
        say_(name_ + " still runs after " + Seconds(limit_) + ": " + command_);
    Wait(watch, ending_event_, -1);
    if (Wait(watch, -1, 0) != 0)
        return;
    kill(-shell, SIGTERM);
    if (Wait(watch, -1, kGraceMilliseconds) == 0)
        kill(-shell, SIGKILL);
}

}  // namespace unit
