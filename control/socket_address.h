#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

namespace control {

// The address of a local socket; `path` must fit, as those of RuntimeFolder::Inside do.
class SocketAddress {
  public:
    explicit SocketAddress(const std::string& path) : address_{} {
        address_.sun_family = AF_UNIX;
        path.copy(address_.sun_path, sizeof address_.sun_path - 1);
    }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    static socklen_t size() { return sizeof(sockaddr_un); }

  private:
    sockaddr_un address_;
};

}  // namespace control
