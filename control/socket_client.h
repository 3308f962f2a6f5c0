#pragma once

#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "control/descriptor.h"
#include "control/protocol.h"

namespace control {

// The exit statuses of the commands that talk to a unit or a DVR.
enum ExitStatus { kExitDone = 0, kExitRefused = 1, kExitWrongUsage = 2, kExitNotRunning = 3 };

// The client of a control socket (protocol.h). For use by one thread.
class SocketClient {
  public:
    // Host time; without a value there is no limit.
    using Limit = std::optional<std::chrono::milliseconds>;

    struct ReplyPart {
        enum class Kind {
            kLine,
            kLost,  // `text` is the number of lines
            kDone,
            kRefused,  // `text` is the problem, of one or more lines
            kMisused,  // the words are no command; `text` is the problem
            kGone,     // the server hung up or broke the protocol
            kLate,     // nothing was received within the limit
        };
        Kind kind;
        std::string text;
    };

    // On failure returns nothing, with one line in `problem`. `not_running` is true if no running
    // process has the name.
    static std::optional<SocketClient> Connect(const std::string& name, Limit limit,
                                               bool& not_running, std::string& problem);

    // Returns false if the server has hung up or does not read; what it sent before can still be
    // received. The request's line must be one line.
    bool Send(const Request& request, Limit limit);
    ReplyPart Receive(Limit limit);

    int descriptor() const { return socket_.get(); }

  private:
    explicit SocketClient(Descriptor socket) : socket_(std::move(socket)) {}
    std::optional<std::string> TakeLine();

    Descriptor socket_;
    std::string input_;
    std::string problem_;  // the lines so far
};

// Sends the request and prints the reply: its lines to `out`, problems to `errors` in lines that
// begin with `program`. Waits up to `limit` for each line. `paint`, if any, gives lines their
// colours. Returns the program's exit status.
ExitStatus PrintReply(SocketClient& client, const Request& request, const char* program,
                      SocketClient::Limit limit, std::FILE* out, std::FILE* errors,
                      const std::function<std::string(const std::string& line)>& paint = {});

}  // namespace control
