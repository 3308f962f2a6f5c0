#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

#include "control/socket_client.h"
#include "control/terminal.h"
#include "dvrsim/program/command_line.h"

namespace {

using namespace dvrsim;
namespace fs = std::filesystem;

constexpr auto kReplyLimit = std::chrono::seconds(5);

void PrintError(const std::string& line) {
    control::PrintError("dvrsim", line);
}

// A symlink at a fixed path. The destructor removes it, unless another one has replaced it.
class PathLink {
  public:
    PathLink() = default;
    PathLink(const PathLink&) = delete;
    PathLink& operator=(const PathLink&) = delete;
    ~PathLink();

    // Replaces an existing symlink. Returns false, with one line in `problem`, if something else is
    // at the path or the link cannot be created.
    bool Make(const std::string& path, const std::string& target, std::string& problem);

  private:
    std::string path_;
    std::string target_;
};

bool PathLink::Make(const std::string& path, const std::string& target, std::string& problem) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (fs::exists(status) && !fs::is_symlink(status)) {
        problem = path + " exists and is not a symlink; give --link another path";
        return false;
    }
    if (fs::is_symlink(status))
        fs::remove(path, error);
    fs::create_symlink(target, path, error);
    if (error) {
        problem = path + ": cannot create the symlink: " + error.message();
        return false;
    }
    path_ = path;
    target_ = target;
    return true;
}

PathLink::~PathLink() {
    std::error_code error;
    if (!path_.empty() && fs::read_symlink(path_, error) == target_)
        fs::remove(path_, error);
}

int Send(const std::string& name, const std::string& command) {
    bool not_running = false;
    std::string problem;
    auto client = control::SocketClient::Connect(name, kReplyLimit, not_running, problem);
    if (!client) {
        PrintError(not_running ? "no dvrsim named " + name + " is running" : problem);
        return control::kExitNotRunning;
    }
    std::error_code ignored;
    const control::Request request{.line = command, .folder = fs::current_path(ignored).string()};
    return control::PrintReply(*client, request, "dvrsim", kReplyLimit, stdout, stderr);
}

int Run(const CommandLine& command_line) {
    bool taken = false;
    std::string problem;
    auto claim = control::SocketClaim::Make(command_line.name, taken, problem);
    if (!claim) {
        PrintError(taken ? "a dvrsim named " + command_line.name +
                               " is running already; give this one another --name"
                         : problem);
        return EXIT_FAILURE;
    }
    auto line = command_line.device.empty() ? MakePseudoTerminal(problem)
                                            : OpenDevice(command_line.device, PrintError, problem);
    if (!line) {
        PrintError(problem);
        return EXIT_FAILURE;
    }
    const std::string path = line->path();
    DvrProcess process(command_line.process, std::move(line), *std::move(claim));
    PathLink link;
    if (!command_line.link.empty() && !link.Make(command_line.link, path, problem)) {
        PrintError(problem);
        return EXIT_FAILURE;
    }
    std::printf("%s\n", path.c_str());
    std::fflush(stdout);
    process.Run();
    return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) {
    int exit_status = 0;
    const auto command_line = ReadCommandLine(count, arguments, exit_status);
    if (!command_line)
        return exit_status;
    return command_line->send ? Send(command_line->name, *command_line->send) : Run(*command_line);
}
