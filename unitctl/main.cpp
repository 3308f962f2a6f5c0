#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>
#include <string_view>

#include "control/local_socket.h"
#include "control/socket_client.h"
#include "control/terminal.h"
#include "control/words.h"
#include "unitctl/command_line.h"
#include "unitctl/paint.h"

namespace {

using namespace std::chrono_literals;
using control::Request;

constexpr auto kConnectLimit = 5s;
// For commands that the unit executes at once.
constexpr auto kReplyLimit = 60s;

void PrintError(const std::string& line) {
    control::PrintError("unitctl", line);
}

// Reads the whole scenario. Returns false, with one line in `problem`, on failure.
bool ReadText(const std::string& file, std::string& text, std::string& problem) {
    const bool standard_input = file == "-";
    errno = 0;
    std::FILE* const input = standard_input ? stdin : std::fopen(file.c_str(), "r");
    std::size_t count = 0;
    char buffer[4096];
    while (input && (count = std::fread(buffer, 1, sizeof buffer, input)) > 0 &&
           text.size() <= control::kMaxText)
        text.append(buffer, count);
    const int error = errno;
    const bool failed = !input || std::ferror(input) != 0;
    if (input && !standard_input)
        std::fclose(input);
    if (failed)
        problem = file + ": " + std::strerror(error);
    else if (text.size() > control::kMaxText)
        problem = file + ": too long; at most " + std::to_string(control::kMaxText) +
                  " bytes are allowed";
    return problem.empty();
}

int Run(const unitctl::CommandLine& command_line) {
    std::error_code ignored;
    std::vector<std::string> words = command_line.words;
    std::string problem;
    Request request;
    request.folder = std::filesystem::current_path(ignored);
    if (words.front() == "run" && words.size() == 2) {
        if (!ReadText(words[1], request.text, problem)) {
            PrintError(problem);
            return control::kExitWrongUsage;
        }
        if (words[1] == "-")
            words.pop_back();
    }
    request.line = control::JoinWords(words);
    if (!control::IsPlainText(request.line) || request.line.size() > control::kMaxLine) {
        PrintError("the command is not plain UTF-8 text or is too long");
        return control::kExitWrongUsage;
    }

    bool not_running = false;
    auto client =
        control::SocketClient::Connect(command_line.unit, kConnectLimit, not_running, problem);
    if (!client) {
        PrintError(
            not_running
                ? "no unit is running" +
                      (command_line.unit == "unit" ? "" : " as '" + command_line.unit + "'") +
                      "; start one with: tolvane"
                : problem);
        return control::kExitNotRunning;
    }
    // The unit decides when these end; Ctrl-C ends them sooner.
    constexpr std::string_view kUnlimited[] = {"watch", "run", "wait", "expect", "tap", "clock"};
    const bool unlimited = std::ranges::find(kUnlimited, words.front()) != std::end(kUnlimited);
    return control::PrintReply(*client, request, "unitctl",
                               unlimited ? control::SocketClient::Limit() : kReplyLimit, stdout,
                               stderr, unitctl::PaintFor(words.front()));
}

}  // namespace

int main(int count, char** arguments) try {
    int exit_status = 0;
    const auto command_line = unitctl::ReadCommandLine(count, arguments, exit_status);
    return command_line ? Run(*command_line) : exit_status;
} catch (const std::exception& error) {
    PrintError(error.what());
    return control::kExitRefused;
}
