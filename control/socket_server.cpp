#include "control/socket_server.h"

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
// Sent without waiting for the next turn, so that a burst finds room.
constexpr std::size_t kMuchOutput = SocketServer::kMostOutput / 16;

}  // namespace

SocketServer::SocketServer(SocketClaim claim, Handlers handlers)
    : claim_(std::move(claim)),
      handlers_(std::move(handlers)),
      poll_(epoll_create1(EPOLL_CLOEXEC)) {
    epoll_event listening{EPOLLIN, {.u64 = kListener}};
    epoll_ctl(poll_.get(), EPOLL_CTL_ADD, claim_.listener(), &listening);
}

SocketServer::~SocketServer() {
    for (auto& [id, client] : clients_)
        Send(client);
}

void SocketServer::HandleReady() {
    std::array<epoll_event, kMostClients + 1> ready;
    const int count = epoll_wait(poll_.get(), ready.data(), static_cast<int>(ready.size()), 0);
    for (int i = 0; i < count; ++i) {
        if (ready[i].data.u64 == kListener)
            Accept();
        else
            Handle(ready[i].data.u64, ready[i].events);
    }
}

void SocketServer::Accept() {
    Descriptor socket(accept4(claim_.listener(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
    if (!socket)
        return;
    const ClientId id = ++last_id_;
    Client& client = clients_[id];
    client.socket = std::move(socket);
    epoll_event none{0, {.u64 = id}};
    epoll_ctl(poll_.get(), EPOLL_CTL_ADD, client.socket.get(), &none);
    if (clients_.size() <= kMostClients)
        return Watch(id, client);
    Refuse(client, "too many clients at a time; at most " + std::to_string(kMostClients));
    Send(client);
    clients_.erase(id);
}

void SocketServer::Handle(ClientId id, std::uint32_t ready) {
    Client* const client = Find(id);
    if (!client)
        return;
    if ((ready & EPOLLIN) != 0)
        Receive(*client);
    FollowRequests(id, *client);
    Send(*client);
    const bool over = (client->input_ended && !client->answering) || client->closing;
    const bool hung_up = (ready & kHungUp) != 0 && (ready & EPOLLIN) == 0;
    if (hung_up || (over && client->output.empty()))
        Drop(id, *client);
    else
        Watch(id, *client);
}

void SocketServer::Receive(Client& client) {
    std::array<char, 4096> buffer;
    const ssize_t count = recv(client.socket.get(), buffer.data(), buffer.size(), 0);
    if (count > 0)
        client.input.append(buffer.data(), static_cast<std::size_t>(count));
    else if (count == 0 || (errno != EAGAIN && errno != EINTR))
        client.input_ended = true;
}

void SocketServer::FollowRequests(ClientId id, Client& client) {
    while (TakesRequests(client)) {
        const std::size_t end = client.input.find('\n');
        if (std::min(end, client.input.size()) > kLongestLine)
            return Refuse(client, "a line is too long; at most " + std::to_string(kLongestLine) +
                                      " bytes are allowed");
        if (end == std::string::npos)
            return;
        std::string line = client.input.substr(0, end);
        client.input.erase(0, end + 1);
        if (line.ends_with('\r'))
            line.pop_back();
        TakeLine(id, client, line);
    }
}

void SocketServer::TakeLine(ClientId id, Client& client, const std::string& line) {
    if (!IsPlainText(line))
        return Refuse(client, "a line is not plain UTF-8 text");
    if (line.starts_with(kTextMark)) {
        if (client.text.size() + line.size() > kLongestText)
            return Refuse(client, "the text is too long; at most " + std::to_string(kLongestText) +
                                      " bytes are allowed");
        client.text += line.substr(1) + '\n';
        return;
    }
    client.answering = true;
    handlers_.request(id, {line, std::exchange(client.text, {})});
}

void SocketServer::Refuse(Client& client, std::string_view problem) {
    client.output += kRefusedMark + std::string(problem) + '\n';
    client.closing = true;
    client.input.clear();
}

void SocketServer::Line(ClientId id, std::string_view text) {
    Client* const client = Find(id);
    if (!client || !client->answering)
        return;
    ForEachLine(text, [&](std::string_view line) { Append(*client, line); });
    Watch(id, *client);
}

void SocketServer::End(ClientId id, const Outcome& outcome) {
    Client* const client = Find(id);
    if (!client || !client->answering)
        return;
    if (outcome.done)
        Line(id, outcome.text);
    TellLost(*client);
    std::string last = outcome.done ? std::string(1, kDoneMark) : kRefusedMark + outcome.text;
    std::ranges::replace(last, '\n', ' ');
    client->output += last + '\n';
    client->answering = false;
    Watch(id, *client);
}

void SocketServer::Append(Client& client, std::string_view line) {
    // Once lines are lost, more are until there is room again for many.
    const std::size_t room = client.lost != 0 ? kMostOutput / 2 : kMostOutput;
    if (client.output.size() + line.size() > room) {
        ++client.lost;
        return;
    }
    TellLost(client);
    client.output += kTextMark;
    client.output += line;
    client.output += '\n';
    if (client.output.size() > kMuchOutput)
        Send(client);
}

void SocketServer::TellLost(Client& client) {
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
            // Nobody will read it; the hang-up itself is reported in its turn.
            client.output.clear();
            client.input_ended = true;
            return;
        }
        client.output.erase(0, static_cast<std::size_t>(sent));
    }
    TellLost(client);
}

// A client can pile up neither work nor answers that it does not read.
bool SocketServer::TakesRequests(const Client& client) {
    return !client.answering && !client.closing && client.output.size() < kMuchOutput;
}

void SocketServer::Watch(ClientId id, Client& client) {
    const bool reads = TakesRequests(client) && !client.input_ended;
    // Being writable is the sign to go on where no more input will come: with requests that were
    // received already, and to the end.
    const bool goes_on = !client.answering && (client.closing || client.input_ended ||
                                               client.input.find('\n') != std::string::npos);
    const std::uint32_t watched =
        (reads ? EPOLLIN : 0U) | (goes_on || !client.output.empty() ? EPOLLOUT : 0U);
    if (watched == client.watched)
        return;
    client.watched = watched;
    epoll_event event{watched, {.u64 = id}};
    epoll_ctl(poll_.get(), EPOLL_CTL_MOD, client.socket.get(), &event);
}

void SocketServer::Drop(ClientId id, const Client& client) {
    const bool left = client.answering;
    clients_.erase(id);
    if (left)
        handlers_.left(id);
}

SocketServer::Client* SocketServer::Find(ClientId id) {
    const auto found = clients_.find(id);
    return found == clients_.end() ? nullptr : &found->second;
}

}  // namespace control
