#include "control/runtime_folder.h"

#include <fcntl.h>
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

// A session's folder that is missing or another user's (after su) is none.
bool IsOwnFolder(const char* path) {
    struct stat status {};
    return path && path[0] == '/' && stat(path, &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

std::string Place() {
    const char* const session = std::getenv("XDG_RUNTIME_DIR");
    if (IsOwnFolder(session))
        return std::string(session) + "/tolvane";
    return "/tmp/tolvane-" + std::to_string(geteuid());
}

// Empty when the open folder is the user's alone.
std::string Danger(int folder) {
    struct stat status {};
    if (fstat(folder, &status) != 0)
        return std::strerror(errno);
    if (status.st_uid != geteuid())
        return "the folder belongs to another user";
    if ((status.st_mode & kOthers) != 0)
        return "the folder is open to other users; it must have the permissions 0700";
    return {};
}

}  // namespace

std::optional<RuntimeFolder> RuntimeFolder::Open(std::string& problem) {
    std::string path = Place();
    if (mkdir(path.c_str(), kFolderMode) != 0 && errno != EEXIST) {
        problem = path + ": cannot make the folder: " + std::strerror(errno);
        return std::nullopt;
    }
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) {
        const bool replaced = errno == ENOTDIR || errno == ELOOP;
        problem = path + ": " + (replaced ? "not a folder" : std::strerror(errno));
        return std::nullopt;
    }
    if (const std::string danger = Danger(folder.get()); !danger.empty()) {
        problem = path + ": " + danger;
        return std::nullopt;
    }
    return RuntimeFolder(std::move(path), std::move(folder));
}

std::string RuntimeFolder::Inside(std::string_view entry) const {
    return "/proc/self/fd/" + std::to_string(descriptor()) + "/" + std::string(entry);
}

bool IsSocketName(std::string_view name) {
    const auto allowed = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '-' || character == '_';
    };
    return !name.empty() && name.size() <= kLongestName && std::ranges::all_of(name, allowed);
}

}  // namespace control
