#include "unit/video/video_encoder.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <span>
#include <vector>

#include "unit/video/video_format.h"

namespace unit {
namespace {

// A picture that was sent in part waits that long twice.
constexpr timeval kWriteLimit = {15, 0};
constexpr int kFinishLimitMilliseconds = 60'000;
// ffmpeg has ended, or has closed its input and ends.
constexpr int kFailureLimitMilliseconds = 5'000;

std::vector<std::string> Arguments(const std::string& file, int width, int height, int rate) {
    std::vector<std::string> arguments = {"ffmpeg", "-nostdin", "-loglevel", "error",
                                          // A full disk is a failure in every format.
                                          "-xerror", "-y", "-f", "rawvideo", "-pixel_format",
                                          "bgr0", "-video_size",
                                          std::to_string(width) + "x" + std::to_string(height),
                                          "-framerate", std::to_string(rate), "-i", "pipe:0"};
    const std::span<const char* const> options = VideoFormatOf(file)->options;
    arguments.insert(arguments.end(), options.begin(), options.end());
    // A name can begin with a dash or a protocol.
    arguments.push_back("file:" + file);
    return arguments;
}

// Returns the error of posix_spawnp, 0 when there is none.
int Spawn(std::vector<std::string> arguments, int input, int messages, pid_t& child) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, messages, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, messages, STDERR_FILENO);
    // Its own process group: Ctrl-C ends the run, and then the video must be completed.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const int error =
        posix_spawnp(&child, pointers.front(), &files, &attributes, pointers.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

}  // namespace

VideoEncoder::~VideoEncoder() {
    End(0);
    std::error_code ignored;
    if (!file_.empty() && !complete_ && std::filesystem::is_regular_file(file_, ignored))
        std::filesystem::remove(file_, ignored);
}

bool VideoEncoder::Start(const std::string& file, int width, int height, int rate,
                         std::string& problem) {
    const control::Descriptor writable(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    messages_.reset(std::tmpfile());
    // Unlike a pipe, a socket reports its closed end without a signal.
    int ends[2] = {-1, -1};
    if (!writable || !messages_ || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        problem = file + ": " + std::strerror(errno);
        return false;
    }
    input_ = control::Descriptor(ends[0]);
    const control::Descriptor output(ends[1]);
    setsockopt(input_.get(), SOL_SOCKET, SO_SNDTIMEO, &kWriteLimit, sizeof kWriteLimit);
    const int error =
        Spawn(Arguments(file, width, height, rate), output.get(), fileno(messages_.get()), child_);
    if (error == 0) {
        file_ = file;
        return true;
    }
    child_ = -1;
    // Not one from another run.
    std::error_code ignored;
    if (std::filesystem::file_size(file, ignored) == 0)
        std::filesystem::remove(file, ignored);
    problem = error == ENOENT
                  ? "ffmpeg, which encodes videos, is not installed; Debian's package ffmpeg has it"
                  : std::string("ffmpeg cannot be run: ") + std::strerror(error);
    return false;
}

bool VideoEncoder::Write(const Picture& picture, std::string& problem) {
    auto rest = std::as_bytes(std::span(picture.pixels));
    while (!rest.empty()) {
        const ssize_t sent = send(input_.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent < 0) {
            const bool stuck = errno == EAGAIN;
            End(stuck ? 0 : kFailureLimitMilliseconds);
            problem = Problem(stuck ? "ffmpeg takes no more pictures" : "ffmpeg has ended");
            return false;
        }
        rest = rest.subspan(static_cast<std::size_t>(sent));
    }
    return true;
}

bool VideoEncoder::Finish(std::string& problem) {
    const int status = End(kFinishLimitMilliseconds);
    complete_ = status == 0;
    if (!complete_)
        problem = Problem(status < 0 ? "ffmpeg did not end"
                                     : "ffmpeg failed with status " + std::to_string(status));
    return complete_;
}

int VideoEncoder::End(int milliseconds) {
    if (child_ < 0)
        return -1;
    input_ = control::Descriptor();
    const control::Descriptor watch(static_cast<int>(syscall(SYS_pidfd_open, child_, 0)));
    pollfd watched = {watch.get(), POLLIN, 0};
    int ended = -1;
    while ((ended = poll(&watched, 1, milliseconds)) < 0 && errno == EINTR)
        continue;
    if (ended <= 0)
        kill(child_, SIGKILL);
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string VideoEncoder::Problem(const std::string& otherwise) const {
    std::string line;
    std::rewind(messages_.get());
    char text[512];
    while (std::fgets(text, sizeof text, messages_.get()))
        if (text[0] != '\n')
            line = text;
    line.erase(line.find_last_not_of("\r\n") + 1);
    return file_ + ": " + otherwise + (line.empty() ? "" : ": " + line);
}

}  // namespace unit
