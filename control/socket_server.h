#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "control/command_table.h"
#include "control/descriptor.h"
#include "control/protocol.h"
#include "control/socket_claim.h"

namespace control {

// Answers requests on a control socket (protocol.h). It has no thread: whoever owns it waits for
// its descriptor and calls HandleReady. No client makes it wait, and what it keeps for one is
// bounded. One thread.
class SocketServer {
  public:
    using ClientId = std::uint64_t;

    struct Handlers {
        // To be answered by any number of Line and then End, during the call or later.
        std::function<void(ClientId, const Request&)> request;
        // A client hung up while its request was being answered.
        std::function<void(ClientId)> left;
    };

    static constexpr std::size_t kMostClients = 32;
    // The bytes that wait for a client to read them; what comes on top is left out.
    static constexpr std::size_t kMostOutput = std::size_t{1024} * 1024;

    SocketServer(SocketClaim claim, Handlers handlers);
    ~SocketServer();
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

    // Can be read from whenever HandleReady has something to do.
    int descriptor() const { return poll_.get(); }
    // Never blocks.
    void HandleReady();

    // A line of the answer, or several divided by \n. A client that has gone is ignored.
    void Line(ClientId id, std::string_view text);
    // The outcome, its text as the last lines of the answer when it is done.
    void End(ClientId id, const Outcome& outcome);

    const SocketClaim& claim() const { return claim_; }

  private:
    struct Client {
        Descriptor socket;
        std::string input;   // received, not yet a whole line
        std::string text;    // of the request to come
        std::string output;  // to be sent
        std::size_t lost = 0;
        bool answering = false;
        bool input_ended = false;
        bool closing = false;  // as soon as the output is sent
        std::uint32_t watched = 0;
    };

    static bool TakesRequests(const Client& client);
    void Accept();
    void Handle(ClientId id, std::uint32_t ready);
    void Receive(Client& client);
    void FollowRequests(ClientId id, Client& client);
    void TakeLine(ClientId id, Client& client, const std::string& line);
    void Refuse(Client& client, std::string_view problem);
    void Append(Client& client, std::string_view line);
    void TellLost(Client& client);
    void Send(Client& client);
    void Watch(ClientId id, Client& client);
    void Drop(ClientId id, const Client& client);
    Client* Find(ClientId id);

    SocketClaim claim_;
    const Handlers handlers_;
    Descriptor poll_;
    std::map<ClientId, Client> clients_;
    ClientId last_id_ = 0;
};

}  // namespace control
