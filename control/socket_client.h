#pragma once

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

#include "control/descriptor.h"
#include "control/protocol.h"

namespace control {

// How the commands that speak to a unit or a DVR end.
enum ExitStatus { kExitDone = 0, kExitRefused = 1, kExitWrongUsage = 2, kExitNotRunning = 3 };

// The asking end of a control socket (protocol.h). One thread.
class SocketClient {
  public:
    using Limit = std::optional<std::chrono::milliseconds>;  // of host time; none waits for ever

    struct ReplyPart {
        enum class Kind {
            kLine,
            kLost,  // `text` is how many lines
            kDone,
            kRefused,  // `text` is the problem
            kGone,     // the other end hung up, or speaks something else
            kLate,     // nothing came within the limit
        };
        Kind kind;
        std::string text;
    };

    // Empty with one line in `problem`; `not_running` tells that no living process has the name,
    // rather than that something is wrong.
    static std::optional<SocketClient> Connect(const std::string& name, Limit limit,
                                               bool& not_running, std::string& problem);

    // False when the other end has hung up or does not read; what it said before can still be
    // received. The request's line must be one line.
    bool Send(const Request& request, Limit limit);
    ReplyPart Receive(Limit limit);

    int descriptor() const { return socket_.get(); }

  private:
    explicit SocketClient(Descriptor socket) : socket_(std::move(socket)) {}
    std::optional<std::string> TakeLine();

    Descriptor socket_;
    std::string input_;
};

// Sends the request and prints the answer: its lines on `out`, problems on `errors` in lines that
// begin with `teller` (the command's name). `limit` is how long it waits for each line. Returns how
// the command is to end.
ExitStatus PrintReply(SocketClient& client, const Request& request, const char* teller,
                      SocketClient::Limit limit, std::FILE* out, std::FILE* errors);

}  // namespace control
