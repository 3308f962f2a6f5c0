#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <optional>
#include <string>
#include <string_view>

#include "control/descriptor.h"

namespace control {

// The folder for the sockets of running units and DVRs: $XDG_RUNTIME_DIR/tolvane if the session has
// such a folder, otherwise /tmp/tolvane-UID. Only the user can access it.
class RuntimeFolder {
  public:
    // Opens the folder and creates it if necessary. Returns nothing, with one line in `problem`, if
    // it cannot be created or is not safe: a symlink, another user's, or accessible to others.
    static std::optional<RuntimeFolder> Open(std::string& problem);

    const std::string& path() const { return path_; }
    int descriptor() const { return descriptor_.get(); }

    // The path of an entry, through the open descriptor: it stays in the checked folder even if
    // another one replaces it. Short enough for a socket address.
    std::string PathOf(std::string_view entry) const;

  private:
    RuntimeFolder(std::string path, Descriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::string path_;
    Descriptor descriptor_;
};

// True for a name that a unit or DVR may have: 1 to 32 letters, digits, - and _.
bool IsSocketName(std::string_view name);
inline constexpr std::string_view kSocketNameAllowed =
    "up to 32 letters, digits, '-' and '_', such as unit-2";

// The address of a local socket. `path` must fit; those of RuntimeFolder::PathOf do.
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

// A listening socket with a name that no other process can claim while this object exists. If a
// process dies, its name is free at once.
class SocketClaim {
  public:
    // On failure returns nothing, with one line in `problem`. `taken` is true if a running process
    // has the name.
    static std::optional<SocketClaim> Make(const std::string& name, bool& taken,
                                           std::string& problem);
    SocketClaim(SocketClaim&& other) noexcept = default;
    SocketClaim& operator=(SocketClaim&&) = delete;
    ~SocketClaim();

    int listener() const { return listener_.get(); }
    std::string path() const { return folder_.path() + "/" + entry_; }

  private:
    SocketClaim(RuntimeFolder folder, std::string entry, Descriptor lock, Descriptor listener)
        : folder_(std::move(folder)),
          entry_(std::move(entry)),
          lock_(std::move(lock)),
          listener_(std::move(listener)) {}

    RuntimeFolder folder_;
    std::string entry_;
    // Locked. The host releases the lock when the process ends, in any way.
    Descriptor lock_;
    Descriptor listener_;
};

// The file name of the socket in the runtime folder.
std::string SocketEntry(const std::string& name);

}  // namespace control
