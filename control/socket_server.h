#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "control/command_table.h"
#include "control/descriptor.h"
#include "control/local_socket.h"
#include "control/protocol.h"

namespace control {

// Answers requests on a control socket (protocol.h). It has no thread: whoever owns it waits for
// its descriptor and calls HandleReady. No client makes it wait, and what it keeps for one is
// bounded.
//
// One thread owns it and calls everything but Line and End, which any thread may call, with locks
// of its own held: they take the server's lock and no other.
class SocketServer {
  public:
    using ClientId = std::uint64_t;

    // Called by HandleReady, without the server's lock.
    struct Handlers {
        // To be answered by any number of Line and then End, during the call or later.
        std::function<void(ClientId, const Request&)> request;
        // A client has gone: what is still being done for it may stop.
        std::function<void(ClientId)> disconnected;
    };

    static constexpr std::size_t kMaxClients = 32;
    // The bytes that wait for a client to read them; what comes on top is left out.
    static constexpr std::size_t kMaxOutput = std::size_t{1024} * 1024;

    SocketServer(SocketClaim claim, Handlers handlers);
    ~SocketServer();
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

    // Can be read from whenever HandleReady has something to do.
    int descriptor() const { return poll_.get(); }
    // Never blocks.
    void HandleReady();

    // A line of the answer, or several divided by \n. A client that has gone is ignored.
    void SendLine(ClientId id, std::string_view text);
    // The outcome, its text as the last lines of the answer when it is done.
    void SendOutcome(ClientId id, const Outcome& outcome);

    const SocketClaim& claim() const { return claim_; }

  private:
    struct Client {
        Descriptor socket;
        std::string input;   // received, not yet a whole line
        Request next;        // what was told ahead of the request
        std::string output;  // to be sent
        std::size_t lost = 0;
        bool replying = false;
        bool input_ended = false;
        bool closing = false;  // as soon as the output is sent
        std::uint32_t watched = 0;
    };

    static bool TakesRequests(const Client& client);
    using Call = std::function<void()>;

    void Accept();
    void RejectClient();
    // Appends the handlers' calls that are due.
    void Handle(ClientId id, std::uint32_t ready, std::vector<Call>& calls);
    void Receive(Client& client);
    std::optional<Request> NextRequest(Client& client);
    std::optional<Request> TakeLine(Client& client, std::string line);
    void Refuse(Client& client, std::string_view problem);
    void Append(Client& client, std::string_view line);
    void ReportLost(Client& client);
    void Send(Client& client);
    void Watch(ClientId id, Client& client);
    Client* FindRequester(ClientId id);

    SocketClaim claim_;
    const Handlers handlers_;
    Descriptor poll_;
    Descriptor spare_;  // given up to turn a client away when the process has no other left
    std::mutex mutex_;
    std::map<ClientId, Client> clients_;
    ClientId last_id_ = 0;
};

}  // namespace control
