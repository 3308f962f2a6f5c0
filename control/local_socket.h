#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <optional>
#include <string>
#include <string_view>

#include "control/descriptor.h"

namespace control {

// The user's folder for the sockets of running units and DVRs: $XDG_RUNTIME_DIR/tolvane where the
// session has such a folder, else /tmp/tolvane-UID. It belongs to the user alone.
class RuntimeFolder {
  public:
    // Opens the folder, made first where it is missing. Empty with one line in `problem` when it
    // cannot be made or is not safe: a symlink, somebody else's, or open to others.
    static std::optional<RuntimeFolder> Open(std::string& problem);

    const std::string& path() const { return path_; }
    int descriptor() const { return descriptor_.get(); }

    // The path of an entry by way of the open folder: whatever is put in the folder's place
    // meanwhile, it is the checked one that is used. Short enough for any socket's address.
    std::string PathOf(std::string_view entry) const;

  private:
    RuntimeFolder(std::string path, Descriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::string path_;
    Descriptor descriptor_;
};

// The names that units and DVRs may have side by side: up to 32 letters, digits, - and _.
bool IsSocketName(std::string_view name);
inline constexpr std::string_view kSocketNameAllowed =
    "up to 32 letters, digits, '-' and '_', such as bench-2";

// The address of a local socket; `path` must fit, as those of RuntimeFolder::PathOf do.
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

// A listening socket of a name, held against others of the same name for as long as this lives. The
// claim of a process that died is free again at once; a living one's cannot be taken.
class SocketClaim {
  public:
    // Empty with one line in `problem`; `taken` tells that a living process has the name.
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
    // Locked: the host lets go of it however the process ends.
    Descriptor lock_;
    Descriptor listener_;
};

// The socket's file in the runtime folder.
std::string SocketEntry(const std::string& name);

}  // namespace control
