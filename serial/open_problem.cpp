#include "serial/open_problem.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

namespace serial {
namespace {

constexpr mode_t kGroupAccess = S_IRGRP | S_IWGRP;

std::string GroupName(gid_t group) {
    const struct group* const entry = getgrgid(group);
    return entry ? entry->gr_name : std::to_string(group);
}

std::string UserName(uid_t user) {
    const struct passwd* const entry = getpwuid(user);
    return entry ? entry->pw_name : std::to_string(user);
}

// By the user database, whatever groups this process still has from its log-in.
bool IsMember(uid_t user, gid_t group) {
    const struct passwd* const entry = getpwuid(user);
    if (!entry)
        return false;
    int count = 0;
    getgrouplist(entry->pw_name, entry->pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 1)));
    getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count);
    return std::ranges::find(groups, group) != groups.end();
}

std::string WhoMayOpen(const struct stat& device) {
    if ((device.st_mode & kGroupAccess) != kGroupAccess)
        return "only its owner " + UserName(device.st_uid) + " may open the device";
    const std::string group = GroupName(device.st_gid);
    if (IsMember(geteuid(), device.st_gid))
        return "the device belongs to group " + group +
               ", which this log-in does not have yet: log in again";
    return "the device belongs to group " + group + ": sudo adduser " + UserName(geteuid()) + " " +
           group + ", then log in again";
}

}  // namespace

std::string OpenProblem(const std::string& path, int error) {
    struct stat device {};
    if (error == EACCES && stat(path.c_str(), &device) == 0 && S_ISCHR(device.st_mode))
        return path + ": permission denied; " + WhoMayOpen(device);
    if (error == EBUSY)
        return path + ": the serial device is in use by another program";
    return path + ": cannot open the serial device: " + std::strerror(error);
}

}  // namespace serial
