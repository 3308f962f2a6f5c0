#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "control/socket_client.h"
#include "dvrsim/program/command_line.h"
#include "dvrsim/program/path_link.h"

namespace {

using namespace dvrsim;

constexpr auto kAnswerLimit = std::chrono::seconds(5);

void Say(const std::string& line) {
    std::fprintf(stderr, "dvrsim: %s\n", line.c_str());
}

int Send(const std::string& name, const std::string& command) {
    bool nobody = false;
    std::string problem;
    auto client = control::SocketClient::Connect(name, kAnswerLimit, nobody, problem);
    if (!client) {
        Say(nobody ? "no dvrsim named " + name + " is running" : problem);
        return control::kExitNobodyThere;
    }
    std::error_code ignored;
    const control::Request request{.line = command,
                                   .folder = std::filesystem::current_path(ignored).string()};
    return control::PrintAnswer(*client, request, "dvrsim", kAnswerLimit, stdout, stderr);
}

int Run(const CommandLine& command_line) {
    bool taken = false;
    std::string problem;
    auto claim = control::SocketClaim::Make(command_line.name, taken, problem);
    if (!claim) {
        Say(taken ? "a dvrsim named " + command_line.name +
                        " is running already; give this one another --name"
                  : problem);
        return EXIT_FAILURE;
    }
    auto line = command_line.device.empty() ? MakePseudoTerminal(problem)
                                            : OpenDevice(command_line.device, Say, problem);
    if (!line) {
        Say(problem);
        return EXIT_FAILURE;
    }
    const std::string path = line->path();
    DvrProcess process(command_line.process, std::move(line), *std::move(claim));
    PathLink link;
    if (!command_line.link.empty() && !link.Make(command_line.link, path, problem)) {
        Say(problem);
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
