#include "control/socket_claim.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "control/socket_address.h"

namespace control {
namespace {

constexpr mode_t kSocketMode = 0600;
constexpr int kWaitingConnections = 64;

// Removes what a dead process left; false with errno set when something else is in the way.
bool RemoveStale(const RuntimeFolder& folder, const std::string& entry) {
    struct stat status {};
    if (fstatat(folder.descriptor(), entry.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (!S_ISSOCK(status.st_mode)) {
        errno = ENOTSOCK;
        return false;
    }
    return unlinkat(folder.descriptor(), entry.c_str(), 0) == 0;
}

Descriptor Listen(const RuntimeFolder& folder, const std::string& entry) {
    Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const SocketAddress address(folder.Inside(entry));
    // The mode that the socket's file is made with.
    if (!listener || fchmod(listener.get(), kSocketMode) != 0 ||
        bind(listener.get(), address.get(), SocketAddress::size()) != 0 ||
        listen(listener.get(), kWaitingConnections) != 0)
        return {};
    return listener;
}

}  // namespace

std::string SocketEntry(const std::string& name) {
    return name + ".sock";
}

std::optional<SocketClaim> SocketClaim::Make(const std::string& name, bool& taken,
                                             std::string& problem) {
    taken = false;
    std::optional<RuntimeFolder> folder = RuntimeFolder::Open(problem);
    if (!folder)
        return std::nullopt;
    std::string entry = SocketEntry(name);
    const auto refuse = [&](const std::string& file) {
        problem = folder->path() + "/" + file + ": " + std::strerror(errno);
        return std::nullopt;
    };

    // The lock's file stays when the claim ends: were it removed, two could hold locks on files of
    // the same name.
    const std::string lock_entry = name + ".lock";
    Descriptor lock(openat(folder->descriptor(), lock_entry.c_str(),
                           O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kSocketMode));
    if (!lock)
        return refuse(lock_entry);
    if (flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        taken = errno == EWOULDBLOCK;
        return refuse(lock_entry);
    }
    if (!RemoveStale(*folder, entry))
        return refuse(entry);
    Descriptor listener = Listen(*folder, entry);
    if (!listener)
        return refuse(entry);
    return SocketClaim(*std::move(folder), std::move(entry), std::move(lock), std::move(listener));
}

SocketClaim::~SocketClaim() {
    if (listener_)
        unlinkat(folder_.descriptor(), entry_.c_str(), 0);
}

}  // namespace control
