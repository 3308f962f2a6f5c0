#include "control/socket_client.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <thread>
#include <utility>

#include "control/local_socket.h"
#include "control/terminal.h"

namespace control {
namespace {

using Clock = std::chrono::steady_clock;
using ReplyPart = SocketClient::ReplyPart;

// Longer than any line that SocketServer sends.
constexpr std::size_t kLongestReply = std::size_t{4} * 1024 * 1024;
constexpr auto kRetryInterval = std::chrono::milliseconds(5);

std::optional<Clock::time_point> Deadline(SocketClient::Limit limit) {
    return limit ? std::optional(Clock::now() + *limit) : std::nullopt;
}

// Waits until the socket is ready for `events`, or hung up; false at the deadline.
bool WaitFor(int socket, short events, const std::optional<Clock::time_point>& deadline) {
    for (;;) {
        int wait = -1;
        if (deadline) {
            const auto left =
                std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
            wait = static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000));
        }
        pollfd watched{socket, events, 0};
        const int count = poll(&watched, 1, wait);
        if (count > 0)
            return true;
        if (count == 0 && deadline && Clock::now() >= *deadline)
            return false;
    }
}

}  // namespace

std::optional<SocketClient> SocketClient::Connect(const std::string& name, Limit limit,
                                                  bool& not_running, std::string& problem) {
    not_running = false;
    const std::optional<RuntimeFolder> folder = RuntimeFolder::Open(problem);
    if (!folder)
        return std::nullopt;
    const auto deadline = Deadline(limit);
    const SocketAddress address(folder->PathOf(SocketEntry(name)));
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    while (connect(socket.get(), address.get(), SocketAddress::size()) != 0) {
        const bool backlog_full = errno == EAGAIN || errno == EINTR;
        if (!backlog_full || (deadline && Clock::now() >= *deadline)) {
            not_running = errno == ENOENT || errno == ECONNREFUSED;
            problem = folder->path() + "/" + SocketEntry(name) + ": " +
                      (backlog_full ? "no reply" : std::strerror(errno));
            return std::nullopt;
        }
        std::this_thread::sleep_for(kRetryInterval);
    }
    return SocketClient(std::move(socket));
}

bool SocketClient::Send(const Request& request, Limit limit) {
    std::string message;
    if (!request.folder.empty())
        message += kFolderMark + request.folder + '\n';
    ForEachLine(request.text, [&](std::string_view line) {
        message += kTextMark;
        message += line;
        message += '\n';
    });
    message += request.line + '\n';
    const auto deadline = Deadline(limit);
    std::string_view left = message;
    while (!left.empty()) {
        const ssize_t sent = send(socket_.get(), left.data(), left.size(), MSG_NOSIGNAL);
        if (sent >= 0)
            left.remove_prefix(static_cast<std::size_t>(sent));
        else if ((errno != EAGAIN && errno != EINTR) || !WaitFor(socket_.get(), POLLOUT, deadline))
            return false;
    }
    return true;
}

std::optional<std::string> SocketClient::TakeLine() {
    const std::size_t end = input_.find('\n');
    if (end == std::string::npos)
        return std::nullopt;
    std::string line = input_.substr(0, end);
    input_.erase(0, end + 1);
    return line;
}

SocketClient::ReplyPart SocketClient::Receive(Limit limit) {
    const auto deadline = Deadline(limit);
    for (;;) {
        if (const auto line = TakeLine()) {
            const std::string text = line->empty() ? "" : line->substr(1);
            switch (line->empty() ? '\0' : line->front()) {
                case kTextMark:
                    return {ReplyPart::Kind::kLine, text};
                case kLostMark:
                    return {ReplyPart::Kind::kLost, text};
                case kDoneMark:
                    return {ReplyPart::Kind::kDone, text};
                case kProblemMark:
                    problem_ += text + '\n';
                    continue;
                case kRefusedMark:
                    return {ReplyPart::Kind::kRefused, std::exchange(problem_, {}) + text};
                case kMisusedMark:
                    return {ReplyPart::Kind::kMisused, std::exchange(problem_, {}) + text};
                default:
                    return {ReplyPart::Kind::kGone, "the reply is malformed"};
            }
        }
        if (!WaitFor(socket_.get(), POLLIN, deadline))
            return {ReplyPart::Kind::kLate, "no reply"};
        std::array<char, 16384> buffer;
        const ssize_t count = recv(socket_.get(), buffer.data(), buffer.size(), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            continue;
        if (count <= 0 || input_.size() > kLongestReply)
            return {ReplyPart::Kind::kGone, "the server has hung up"};
        input_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

ExitStatus PrintReply(SocketClient& client, const Request& request, const char* program,
                      SocketClient::Limit limit, std::FILE* out, std::FILE* errors,
                      const std::function<std::string(const std::string&)>& paint) {
    client.Send(request, limit);
    for (;;) {
        const ReplyPart reply = client.Receive(limit);
        // Replies can contain text from a DVR, which must not control the terminal.
        std::string text;
        ForEachLine(reply.text, [&](std::string_view line) {
            text += (text.empty() ? "" : "\n") + PlainText(line);
        });
        switch (reply.kind) {
            case ReplyPart::Kind::kLine:
                std::fprintf(out, "%s\n", (paint ? paint(text) : text).c_str());
                std::fflush(out);
                continue;
            case ReplyPart::Kind::kLost:
                PrintError(program, text + " lines lost", errors);
                continue;
            case ReplyPart::Kind::kDone:
                return kExitDone;
            case ReplyPart::Kind::kRefused:
            case ReplyPart::Kind::kMisused:
            case ReplyPart::Kind::kGone:
            case ReplyPart::Kind::kLate:
                break;
        }
        PrintError(program, text, errors);
        return reply.kind == ReplyPart::Kind::kRefused   ? kExitRefused
               : reply.kind == ReplyPart::Kind::kMisused ? kExitWrongUsage
                                                         : kExitNotRunning;
    }
}

}  // namespace control
