#include "control/local_socket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace control {
namespace {

constexpr mode_t kFolderMode = 0700;
constexpr mode_t kOthers = 0077;
constexpr std::size_t kLongestName = 32;

// After su, XDG_RUNTIME_DIR can name another user's folder.
bool IsOwnFolder(const char* path) {
    struct stat status {};
    return path && path[0] == '/' && stat(path, &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

std::string FolderPath() {
    const char* const session = std::getenv("XDG_RUNTIME_DIR");
    if (IsOwnFolder(session))
        return std::string(session) + "/tolvane";
    return "/tmp/tolvane-" + std::to_string(geteuid());
}

// Returns the problem if other users can access the open folder, or an empty text.
std::string AccessProblem(int folder) {
    struct stat status {};
    if (fstat(folder, &status) != 0)
        return std::strerror(errno);
    if (status.st_uid != geteuid())
        return "the folder belongs to another user";
    if ((status.st_mode & kOthers) != 0)
        return "other users can access the folder; it must have the permissions 0700";
    return {};
}

constexpr mode_t kSocketMode = 0600;
constexpr int kWaitingConnections = 64;

// Removes the socket that a dead process left. Returns false, with errno set, on failure or if the
// entry is not a socket.
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
    const SocketAddress address(folder.PathOf(entry));
    // bind() creates the file with this mode.
    if (!listener || fchmod(listener.get(), kSocketMode) != 0 ||
        bind(listener.get(), address.get(), SocketAddress::size()) != 0 ||
        listen(listener.get(), kWaitingConnections) != 0)
        return {};
    return listener;
}

}  // namespace

std::optional<RuntimeFolder> RuntimeFolder::Open(std::string& problem) {
    std::string path = FolderPath();
    if (mkdir(path.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        problem = path + ": cannot create the folder: " + std::strerror(errno);
        return std::nullopt;
    }
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) {
        const bool replaced = errno == ENOTDIR || errno == ELOOP;
        problem = path + ": " + (replaced ? "not a folder" : std::strerror(errno));
        return std::nullopt;
    }
    if (const std::string access_problem = AccessProblem(folder.get()); !access_problem.empty()) {
        problem = path + ": " + access_problem;
        return std::nullopt;
    }
    return RuntimeFolder(std::move(path), std::move(folder));
}

std::string RuntimeFolder::PathOf(std::string_view entry) const {
    return "/proc/self/fd/" + std::to_string(descriptor()) + "/" + std::string(entry);
}

bool IsSocketName(std::string_view name) {
    const auto allowed = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '-' || character == '_';
    };
    return !name.empty() && name.size() <= kLongestName && std::ranges::all_of(name, allowed);
}

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

    // The lock file stays when the claim ends. If it were removed, two processes could hold locks
    // on different files of the same name.
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
