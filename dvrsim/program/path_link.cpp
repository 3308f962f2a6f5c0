#include "dvrsim/program/path_link.h"

#include <filesystem>
#include <system_error>

namespace dvrsim {

namespace fs = std::filesystem;

bool PathLink::Make(const std::string& path, const std::string& target, std::string& problem) {
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (fs::exists(status) && !fs::is_symlink(status)) {
        problem = path + ": something other than a symlink is there; give --link another path";
        return false;
    }
    if (fs::is_symlink(status))
        fs::remove(path, error);
    fs::create_symlink(target, path, error);
    if (error) {
        problem = path + ": cannot make the symlink: " + error.message();
        return false;
    }
    path_ = path;
    target_ = target;
    return true;
}

PathLink::~PathLink() {
    std::error_code error;
    if (!path_.empty() && fs::read_symlink(path_, error) == target_)
        fs::remove(path_, error);
}

}  // namespace dvrsim
