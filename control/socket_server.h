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

// Receives requests on a control socket and sends the replies (protocol.h). It has no thread: its
// owner waits for its descriptor and calls HandleReady. It never waits for a client, and the memory
// that it uses for one is bounded.
//
// Only the owner's thread may call its functions, except SendLine and SendOutcome: any thread may
// call those, even while it holds locks, since they take the server's lock and no other.
class SocketServer {
  public:
    using ClientId = std::uint64_t;

    // Called by HandleReady, without the server's lock.
    struct Handlers {
        // The reply is any number of calls of SendLine and one of SendOutcome, now or later.
        std::function<void(ClientId, const Request&)> request;
        // The client has hung up: work for it can stop.
        std::function<void(ClientId)> disconnected;
    };

    static constexpr std::size_t kMaxClients = 32;
    // Bytes that a client has not read yet; lines beyond that are dropped.
    static constexpr std::size_t kMaxOutput = std::size_t{1024} * 1024;

    SocketServer(SocketClaim claim, Handlers handlers);
    ~SocketServer();
    SocketServer(const SocketServer&) = delete;
    SocketServer& operator=(const SocketServer&) = delete;

    // Readable while HandleReady has work to do.
    int descriptor() const { return poll_.get(); }
    // Never blocks.
    void HandleReady();

    // Sends one line of the reply, or several separated by \n. Ignores a client that has hung up.
    void SendLine(ClientId id, std::string_view text);
    // Ends the reply. The text of an outcome that is done becomes its last lines.
    void SendOutcome(ClientId id, const Outcome& outcome);

    const SocketClaim& claim() const { return claim_; }

  private:
    struct Client {
        Descriptor socket;
        std::string input;   // received, not yet read
        Request next;        // the folder and text of the next request
        std::string output;  // not yet sent
        std::size_t lost = 0;
        bool replying = false;
        bool input_ended = false;
        bool closing = false;  // once the output is sent
        std::uint32_t watched = 0;
    };

    static bool TakesRequests(const Client& client);
    using Call = std::function<void()>;

    void Accept();
    void RejectClient();
    // Appends the calls of the handlers that must follow.
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
    Descriptor spare_;  // closed to reject a client when the process has no other descriptor left
    std::mutex mutex_;
    std::map<ClientId, Client> clients_;
    ClientId last_id_ = 0;
};

}  // namespace control
