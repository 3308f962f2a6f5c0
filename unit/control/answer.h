#pragma once

#include <mutex>
#include <string_view>

#include "control/socket_server.h"

namespace unit {

// The answer to one request of a client, given by whoever works on it, now or later. It outlives
// the client and the server: what is said then is lost. Any thread.
class Answer {
  public:
    Answer(control::SocketServer& server, control::SocketServer::ClientId client)
        : server_(&server), client_(client) {}

    void Line(std::string_view text) {
        const std::scoped_lock lock(mutex_);
        if (server_)
            server_->SendLine(client_, text);
    }
    // The last word; what follows is lost.
    void End(const control::Outcome& outcome) {
        const std::scoped_lock lock(mutex_);
        if (server_)
            server_->SendOutcome(client_, outcome);
        server_ = nullptr;
    }
    // Nobody waits for it any more.
    void Abandon() {
        const std::scoped_lock lock(mutex_);
        server_ = nullptr;
    }
    bool wanted() const {
        const std::scoped_lock lock(mutex_);
        return server_ != nullptr;
    }

  private:
    mutable std::mutex mutex_;
    control::SocketServer* server_;
    const control::SocketServer::ClientId client_;
};

}  // namespace unit
