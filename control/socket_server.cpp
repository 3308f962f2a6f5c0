#include "control/socket_server.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace control {
namespace {

constexpr SocketServer::ClientId kListener = 0;
constexpr std::uint32_t kHungUp = EPOLLHUP | EPOLLERR;
// Output beyond this is sent at once, so that a burst does not fill the buffer.
constexpr std::size_t kSendThreshold = SocketServer::kMaxOutput / 16;

Descriptor MakeSpare() {
    return Descriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
}

// Every line but the last says that more follows.
std::string ProblemLines(const Outcome& outcome) {
    std::string lines;
    std::size_t last = 0;
    ForEachLine(outcome.text, [&](std::string_view line) {
        last = lines.size();
        lines += kProblemMark;
        lines += line;
        lines += '\n';
    });
    if (lines.empty())
        lines = std::string(1, kProblemMark) + '\n';
    lines[last] = outcome.misused ? kMisusedMark : kRefusedMark;
    return lines;
}

}  // namespace

SocketServer::SocketServer(SocketClaim claim, Handlers handlers)
    : claim_(std::move(claim)),
      handlers_(std::move(handlers)),
      poll_(epoll_create1(EPOLL_CLOEXEC)),
      spare_(MakeSpare()) {
    epoll_event listening{EPOLLIN, {.u64 = kListener}};
    epoll_ctl(poll_.get(), EPOLL_CTL_ADD, claim_.listener(), &listening);
}

SocketServer::~SocketServer() {
    for (auto& [id, client] : clients_)
        Send(client);
}

void SocketServer::HandleReady() {
    std::array<epoll_event, kMaxClients + 1> ready;
    const int count = epoll_wait(poll_.get(), ready.data(), static_cast<int>(ready.size()), 0);
    std::vector<Call> calls;
    {
        const std::scoped_lock lock(mutex_);
        for (int i = 0; i < count; ++i) {
            if (ready[i].data.u64 == kListener)
                Accept();
            else
                Handle(ready[i].data.u64, ready[i].events, calls);
        }
    }
    for (const Call& call : calls)
        call();
}

void SocketServer::Accept() {
    Descriptor socket(accept4(claim_.listener(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket) {
        if (errno == EMFILE || errno == ENFILE)
            RejectClient();
        return;
    }
    const ClientId id = ++last_id_;
    Client& client = clients_[id];
    client.socket = std::move(socket);
    epoll_event none{0, {.u64 = id}};
    epoll_ctl(poll_.get(), EPOLL_CTL_ADD, client.socket.get(), &none);
    if (clients_.size() <= kMaxClients)
        return Watch(id, client);
    Refuse(client, "too many clients at a time; at most " + std::to_string(kMaxClients));
    Send(client);
    clients_.erase(id);
}

// Without this, epoll would report the waiting client for ever.
void SocketServer::RejectClient() {
    spare_ = {};
    static_cast<void>(Descriptor(accept4(claim_.listener(), nullptr, nullptr, SOCK_CLOEXEC)));
    spare_ = MakeSpare();
}

void SocketServer::Handle(ClientId id, std::uint32_t ready, std::vector<Call>& calls) {
    const auto found = clients_.find(id);
    if (found == clients_.end())
        return;
    Client& client = found->second;
    if ((ready & EPOLLIN) != 0)
        Receive(client);
    if (std::optional<Request> request = NextRequest(client))
        calls.push_back(
            [this, id, request = *std::move(request)] { handlers_.request(id, request); });
    Send(client);
    const bool over = client.closing || (client.input_ended && !client.replying);
    const bool hung_up = (ready & kHungUp) != 0 && (ready & EPOLLIN) == 0;
    if (!hung_up && !(over && client.output.empty()))
        return Watch(id, client);
    calls.push_back([this, id] { handlers_.disconnected(id); });
    clients_.erase(found);
}

void SocketServer::Receive(Client& client) {
    std::array<char, 4096> buffer;
    const ssize_t count = recv(client.socket.get(), buffer.data(), buffer.size(), 0);
    if (count > 0)
        client.input.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        client.input_ended = true;
}

std::optional<Request> SocketServer::NextRequest(Client& client) {
    std::optional<Request> request;
    while (!request && TakesRequests(client)) {
        const std::size_t end = client.input.find('\n');
        if (std::min(end, client.input.size()) > kMaxLine) {
            Refuse(client, "a line is too long; at most " + std::to_string(kMaxLine) +
                               " bytes are allowed");
            break;
        }
        if (end == std::string::npos)
            break;
        std::string line = client.input.substr(0, end);
        client.input.erase(0, end + 1);
        request = TakeLine(client, std::move(line));
    }
    return request;
}

std::optional<Request> SocketServer::TakeLine(Client& client, std::string line) {
    if (line.ends_with('\r'))
        line.pop_back();
    if (!IsPlainText(line)) {
        Refuse(client, "a line is not plain UTF-8 text");
    } else if (line.starts_with(kFolderMark)) {
        client.next.folder = line.substr(1);
    } else if (!line.starts_with(kTextMark)) {
        client.replying = true;
        client.next.line = std::move(line);
        return std::exchange(client.next, {});
    } else if (client.next.text.size() + line.size() > kMaxText) {
        Refuse(client,
               "the text is too long; at most " + std::to_string(kMaxText) + " bytes are allowed");
    } else {
        client.next.text += line.substr(1) + '\n';
    }
    return std::nullopt;
}

void SocketServer::Refuse(Client& client, std::string_view problem) {
    client.output += kRefusedMark + std::string(problem) + '\n';
    client.closing = true;
    client.input.clear();
}

void SocketServer::SendLine(ClientId id, std::string_view text) {
    const std::scoped_lock lock(mutex_);
    Client* const client = FindRequester(id);
    if (!client)
        return;
    ForEachLine(text, [&](std::string_view line) { Append(*client, line); });
    Watch(id, *client);
}

void SocketServer::SendOutcome(ClientId id, const Outcome& outcome) {
    const std::scoped_lock lock(mutex_);
    Client* const client = FindRequester(id);
    if (!client)
        return;
    if (outcome.done)
        ForEachLine(outcome.text, [&](std::string_view line) { Append(*client, line); });
    ReportLost(*client);
    client->output += outcome.done ? kDoneMark + std::string("\n") : ProblemLines(outcome);
    client->replying = false;
    Watch(id, *client);
}

void SocketServer::Append(Client& client, std::string_view line) {
    // After a loss, lines are dropped until half of the buffer is free.
    const std::size_t limit = client.lost != 0 ? kMaxOutput / 2 : kMaxOutput;
    if (client.output.size() + line.size() > limit) {
        ++client.lost;
        return;
    }
    ReportLost(client);
    client.output += kTextMark;
    client.output += line;
    client.output += '\n';
    if (client.output.size() > kSendThreshold)
        Send(client);
}

void SocketServer::ReportLost(Client& client) {
    if (client.lost != 0)
        client.output += kLostMark + std::to_string(std::exchange(client.lost, 0)) + '\n';
}

void SocketServer::Send(Client& client) {
    while (!client.output.empty()) {
        const ssize_t sent = send(client.socket.get(), client.output.data(), client.output.size(),
                                  MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent < 0 && errno == EAGAIN)
            return;
        if (sent < 0) {
            // The client does not read any more; epoll reports its hang-up separately.
            client.output.clear();
            client.input_ended = true;
            return;
        }
        client.output.erase(0, static_cast<std::size_t>(sent));
    }
    ReportLost(client);
}

// A client that does not read its replies cannot make the server do more work.
bool SocketServer::TakesRequests(const Client& client) {
    return !client.replying && !client.closing && client.output.size() < kSendThreshold;
}

void SocketServer::Watch(ClientId id, Client& client) {
    const bool line_left = client.input.find('\n') != std::string::npos;
    const bool reads = TakesRequests(client) && !client.input_ended && !line_left;
    // While no input is wanted, EPOLLOUT triggers the next step: a request that was received
    // before, or the close.
    const bool continues = !client.replying && (client.closing || client.input_ended || line_left);
    const std::uint32_t watched =
        (reads ? EPOLLIN : 0U) | (continues || !client.output.empty() ? EPOLLOUT : 0U);
    if (watched == client.watched)
        return;
    client.watched = watched;
    epoll_event event{watched, {.u64 = id}};
    epoll_ctl(poll_.get(), EPOLL_CTL_MOD, client.socket.get(), &event);
}

SocketServer::Client* SocketServer::FindRequester(ClientId id) {
    const auto found = clients_.find(id);
    return found == clients_.end() || !found->second.replying ? nullptr : &found->second;
}

}  // namespace control
