#include "tests/support/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace tests {

Process::Process() {
    char name[] = "/tmp/tolvane-test-XXXXXX";
    folder_ = mkdtemp(name);
    setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
}

Process::~Process() {
    while (!running_.empty()) {
        kill(running_.back(), SIGKILL);
        Wait(running_.back());
    }
    std::filesystem::remove_all(folder_);
}

pid_t Process::Start(const std::string& program, std::vector<std::string> arguments,
                     const std::string& tag) {
    arguments.insert(arguments.begin(), program);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    const int flags = O_CREAT | O_WRONLY | O_TRUNC;
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, Path(tag + "out").c_str(), flags, 0600);
    posix_spawn_file_actions_addopen(&files, 2, Path(tag + "err").c_str(), flags, 0600);
    pid_t child = 0;
    EXPECT_EQ(posix_spawn(&child, program.c_str(), &files, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&files);
    running_.push_back(child);
    return child;
}

int Process::Wait(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    std::erase(running_, child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool Process::WaitUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

std::string Process::Read(const std::string& name) const {
    std::ostringstream text;
    text << std::ifstream(Path(name)).rdbuf();
    return text.str();
}

}  // namespace tests
