// Both ends of a control socket: the server and the grammar of its commands with any input from a
// client, and the client with any input from a server.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "control/socket_client.h"
#include "control/socket_server.h"
#include "control/words.h"
#include "fuzz/fuzz.h"
#include "unit/commands/unit_commands.h"

namespace {

using control::SocketClient;
using control::SocketServer;
using fuzz::Check;
using ReplyPart = SocketClient::ReplyPart;

constexpr char kServed[] = "served";
constexpr char kHostile[] = "hostile";
constexpr std::chrono::milliseconds kNoWait{0};

control::SocketClaim Claim(const char* name) {
    bool taken = false;
    std::string problem;
    auto claim = control::SocketClaim::Make(name, taken, problem);
    Check(claim.has_value(), "a socket can be claimed", problem);
    return *std::move(claim);
}

SocketClient Connect(const char* name) {
    bool not_running = false;
    std::string problem;
    auto client = SocketClient::Connect(name, kNoWait, not_running, problem);
    Check(client.has_value(), "a client can connect", problem);
    return *std::move(client);
}

// Reads a command as the unit does, but executes nothing.
control::Outcome ReadCommand(const std::string& line) {
    std::string problem;
    const auto words = control::SplitWords(line, problem);
    Check(words.has_value() == problem.empty(), "a refusal has a reason");
    if (!words)
        return control::Refused(problem);
    const auto again = control::SplitWords(control::JoinWords(*words), problem);
    Check(again == words, "words are read as they are written", line);
    unit::UnitCommands().grammar().NextWords(*words);
    const auto command = unit::UnitCommands().Read(*words, problem);
    Check(command.has_value() == problem.empty(), "a refusal has a reason", line);
    return command ? control::Done(std::string(command->row->help)) : control::Refused(problem);
}

struct Server {
    void Handle(SocketServer::ClientId client, const control::Request& request) {
        ++requests;
        Check(control::IsPlainText(request.line) && control::IsPlainText(request.folder),
              "a request is plain text");
        Check(request.line.size() <= control::kMaxLine && request.text.size() <= control::kMaxText,
              "a request has its limits");
        const control::Outcome outcome = ReadCommand(request.line);
        socket.SendLine(client, request.text);
        socket.SendOutcome(client, outcome);
    }

    std::size_t requests = 0;
    std::size_t left = 0;
    SocketServer socket{Claim(kServed),
                        {[this](auto client, const auto& request) { Handle(client, request); },
                         [this](auto) { ++left; }}};
};

// Lets the server handle what was sent, and adds its output.
void Receive(SocketServer& server, int socket, std::string& output) {
    std::array<char, 16384> buffer;
    for (bool quiet = false; !quiet;) {
        server.HandleReady();
        quiet = true;
        for (ssize_t count = 0; (count = recv(socket, buffer.data(), buffer.size(), 0)) > 0;) {
            output.append(buffer.data(), static_cast<std::size_t>(count));
            quiet = false;
        }
    }
}

void CheckReplies(const std::string& output, std::size_t requests) {
    std::size_t outcomes = 0;
    control::ForEachLine(output, [&](std::string_view line) {
        Check(!line.empty() && std::string_view("|!+-").find(line.front()) != std::string::npos,
              "a line of a reply has its mark", output);
        Check(control::IsPlainText(line), "a line of a reply is plain text", line);
        outcomes += line.front() == control::kDoneMark || line.front() == control::kRefusedMark;
    });
    Check(output.empty() || output.ends_with('\n'), "a reply ends its lines");
    // One more when the client was refused altogether.
    Check(outcomes == requests || (outcomes == requests + 1 && output.rfind("\n-") + 1 != 0) ||
              (outcomes == 1 && output.starts_with(control::kRefusedMark)),
          "each request has one outcome", output);
}

void SendToServer(std::string_view bytes, std::size_t chunk) {
    static Server& server = *new Server;
    server.requests = server.left = 0;
    std::string output;
    {
        const SocketClient client = Connect(kServed);
        const int socket = client.descriptor();
        while (!bytes.empty()) {
            const ssize_t sent = send(socket, bytes.data(), std::min(chunk, bytes.size()),
                                      MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent <= 0)
                break;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
            Receive(server.socket, socket, output);
        }
        shutdown(socket, SHUT_WR);
        Receive(server.socket, socket, output);
        Receive(server.socket, socket, output);
    }
    for (int turn = 0; turn < 4 && server.left == 0; ++turn)
        server.socket.HandleReady();
    Check(server.left == 1, "a client that has left is forgotten");
    CheckReplies(output, server.requests);
}

void SendToClient(std::string_view bytes) {
    static control::SocketClaim& claim = *new control::SocketClaim(Claim(kHostile));
    SocketClient client = Connect(kHostile);
    {
        const control::Descriptor socket(accept(claim.listener(), nullptr, nullptr));
        send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    auto kind = ReplyPart::Kind::kLine;
    for (std::size_t parts = 0; kind != ReplyPart::Kind::kGone; ++parts) {
        Check(parts <= bytes.size(), "a part of a reply takes a byte at least");
        const ReplyPart part = client.Receive(kNoWait);
        kind = part.kind;
        Check(part.text.find('\n') == std::string::npos, "a part of a reply is one line");
        Check(kind != ReplyPart::Kind::kLate, "the client sees at once that the server hung up");
    }
}

// Makes the folder of the sockets, and removes it at the end.
void MakeFolder() {
    static std::string folder =
        (std::filesystem::temp_directory_path() / "tolvane-fuzz-XXXXXX").string();
    Check(mkdtemp(folder.data()) != nullptr, "there is a folder for the sockets");
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
}

}  // namespace

void fuzz::Try(Input input) {
    static bool prepared = false;
    if (!std::exchange(prepared, true))
        MakeFolder();
    const std::size_t chunk = input.Byte();
    const std::string_view bytes = input.Text();
    if (chunk == 0)
        SendToClient(bytes);
    else
        SendToServer(bytes, chunk == 0xFF ? bytes.size() : chunk);
}
