// Both ends of a control socket: the server and the commands' grammar under whatever a client
// sends, and the asking end under whatever comes back.
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
#include "fuzz/input.h"
#include "fuzz/promise.h"
#include "unit/commands/unit_commands.h"

namespace {

using control::SocketClient;
using control::SocketServer;
using fuzz::Promise;
using ReplyPart = SocketClient::ReplyPart;

constexpr char kServed[] = "served";
constexpr char kHostile[] = "hostile";
constexpr std::chrono::milliseconds kNoWait{0};

control::SocketClaim Claim(const char* name) {
    bool taken = false;
    std::string problem;
    auto claim = control::SocketClaim::Make(name, taken, problem);
    Promise(claim.has_value(), "a socket can be claimed", problem);
    return *std::move(claim);
}

SocketClient Connect(const char* name) {
    bool not_running = false;
    std::string problem;
    auto client = SocketClient::Connect(name, kNoWait, not_running, problem);
    Promise(client.has_value(), "a client can connect", problem);
    return *std::move(client);
}

// Reads a command as the unit would, and does nothing; what there is to say of it.
control::Outcome ReadCommand(const std::string& line) {
    std::string problem;
    const auto words = control::SplitWords(line, problem);
    Promise(words.has_value() == problem.empty(), "what cannot be split is told why");
    if (!words)
        return control::Refused(problem);
    const auto again = control::SplitWords(control::JoinWords(*words), problem);
    Promise(again == words, "words are read as they are written", line);
    unit::UnitCommands().grammar().NextWords(*words);
    const auto command = unit::UnitCommands().Read(*words, problem);
    Promise(command.has_value() == problem.empty(), "what is refused is told why", line);
    return command ? control::Done(std::string(command->row->help)) : control::Refused(problem);
}

class Server {
  public:
    SocketServer& get() { return server_; }
    std::size_t requests = 0;
    std::size_t left = 0;

  private:
    void Answer(SocketServer::ClientId client, const control::Request& request) {
        ++requests;
        Promise(control::IsPlainText(request.line) && control::IsPlainText(request.folder),
                "a request is plain text");
        Promise(
            request.line.size() <= control::kMaxLine && request.text.size() <= control::kMaxText,
            "a request has its limits");
        const control::Outcome outcome = ReadCommand(request.line);
        server_.SendLine(client, request.text);
        server_.SendOutcome(client, outcome);
    }

    SocketServer server_{Claim(kServed),
                         {[this](SocketServer::ClientId id, const control::Request& request) {
                              Answer(id, request);
                          },
                          [this](SocketServer::ClientId) { ++left; }}};
};

// Lets the server work off what was sent; returns all that it said.
std::string Hear(SocketServer& server, int socket) {
    std::string heard;
    std::array<char, 16384> buffer;
    for (bool quiet = false; !quiet;) {
        server.HandleReady();
        quiet = true;
        for (ssize_t count = 0; (count = recv(socket, buffer.data(), buffer.size(), 0)) > 0;) {
            heard.append(buffer.data(), static_cast<std::size_t>(count));
            quiet = false;
        }
    }
    return heard;
}

void LookAtAnswers(const std::string& heard, std::size_t requests) {
    std::size_t outcomes = 0;
    control::ForEachLine(heard, [&](std::string_view line) {
        Promise(!line.empty() && std::string_view("|!+-").find(line.front()) != std::string::npos,
                "a line of an answer has its mark", heard);
        Promise(control::IsPlainText(line), "a line of an answer is plain text", line);
        outcomes += line.front() == control::kDoneMark || line.front() == control::kRefusedMark;
    });
    Promise(heard.empty() || heard.ends_with('\n'), "an answer ends its lines");
    // One more when the client was refused altogether.
    Promise(outcomes == requests || (outcomes == requests + 1 && heard.rfind("\n-") + 1 != 0) ||
                (outcomes == 1 && heard.starts_with(control::kRefusedMark)),
            "each request has one outcome", heard);
}

void AskTheServer(std::string_view bytes, std::size_t piece) {
    static Server& server = *new Server;
    server.requests = server.left = 0;
    std::string heard;
    {
        const SocketClient client = Connect(kServed);
        const int socket = client.descriptor();
        for (std::string_view left = bytes; !left.empty();) {
            const ssize_t sent = send(socket, left.data(), std::min(piece, left.size()),
                                      MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent <= 0)
                break;
            left.remove_prefix(static_cast<std::size_t>(sent));
            heard += Hear(server.get(), socket);
        }
        shutdown(socket, SHUT_WR);
        heard += Hear(server.get(), socket);
        heard += Hear(server.get(), socket);
    }
    for (int turn = 0; turn < 4 && server.left == 0; ++turn)
        server.get().HandleReady();
    Promise(server.left == 1, "a client that has gone is forgotten");
    LookAtAnswers(heard, server.requests);
}

void AnswerTheClient(std::string_view bytes) {
    static control::SocketClaim& claim = *new control::SocketClaim(Claim(kHostile));
    SocketClient client = Connect(kHostile);
    {
        const control::Descriptor socket(accept(claim.listener(), nullptr, nullptr));
        send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
    for (std::size_t replies = 0;; ++replies) {
        Promise(replies <= bytes.size(), "a reply takes a byte at least");
        const ReplyPart reply = client.Receive(kNoWait);
        Promise(reply.text.find('\n') == std::string::npos, "a reply is one line");
        Promise(reply.kind != ReplyPart::Kind::kLate, "an end that has hung up is seen at once");
        if (reply.kind == ReplyPart::Kind::kGone)
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static std::string folder =
        (std::filesystem::temp_directory_path() / "tolvane-fuzz-XXXXXX").string();
    Promise(mkdtemp(folder.data()) != nullptr, "there is a folder for the sockets");
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    std::atexit([] {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::size_t piece = input.Byte();
    const std::string_view bytes = input.Text();
    if (piece == 0)
        AnswerTheClient(bytes);
    else
        AskTheServer(bytes, piece == 0xFF ? bytes.size() : piece);
    return 0;
}
