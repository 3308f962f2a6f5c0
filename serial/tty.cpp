#include "serial/tty.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

namespace serial {
namespace {

struct Rate {
    unsigned baud;
    speed_t speed;
};
constexpr Rate kRates[] = {
    {9600, B9600},     {19200, B19200},   {38400, B38400},   {57600, B57600},
    {115200, B115200}, {230400, B230400}, {460800, B460800}, {921600, B921600},
};

constexpr tcflag_t kSizes[] = {CS5, CS6, CS7, CS8};
constexpr unsigned kMinDataBits = 5;

const Rate* FindRate(unsigned baud) {
    for (const Rate& rate : kRates)
        if (rate.baud == baud)
            return &rate;
    return nullptr;
}

bool IsSupported(const Settings& settings) {
    return FindRate(settings.baud) && settings.data_bits >= kMinDataBits &&
           settings.data_bits < kMinDataBits + std::size(kSizes) && settings.stop_bits >= 1 &&
           settings.stop_bits <= 2;
}

tcflag_t ControlFlags(const Settings& settings) {
    tcflag_t flags = CLOCAL | CREAD | kSizes[settings.data_bits - kMinDataBits];
    if (settings.stop_bits == 2)
        flags |= CSTOPB;
    if (settings.parity != Parity::kNone)
        flags |= PARENB;
    if (settings.parity == Parity::kOdd)
        flags |= PARODD;
    if (settings.hardware_flow)
        flags |= CRTSCTS;
    return flags;
}

Settings SettingsOf(const termios& state) {
    Settings settings;
    settings.baud = 0;
    for (const Rate& rate : kRates)
        if (rate.speed == cfgetospeed(&state))
            settings.baud = rate.baud;
    for (std::size_t index = 0; index < std::size(kSizes); ++index)
        if ((state.c_cflag & CSIZE) == kSizes[index])
            settings.data_bits = static_cast<unsigned>(kMinDataBits + index);
    if ((state.c_cflag & PARENB) != 0)
        settings.parity = (state.c_cflag & PARODD) != 0 ? Parity::kOdd : Parity::kEven;
    settings.stop_bits = (state.c_cflag & CSTOPB) != 0 ? 2 : 1;
    settings.hardware_flow = (state.c_cflag & CRTSCTS) != 0;
    return settings;
}

// No echo, no line editing, no character changed or interpreted.
bool IsRaw(const termios& state) {
    termios raw = state;
    cfmakeraw(&raw);
    return state.c_iflag == raw.c_iflag && state.c_oflag == raw.c_oflag &&
           state.c_lflag == raw.c_lflag;
}

constexpr mode_t kGroupAccess = S_IRGRP | S_IWGRP;

std::string GroupName(gid_t group) {
    const struct group* const entry = getgrgid(group);
    return entry ? entry->gr_name : std::to_string(group);
}

std::string UserName(uid_t user) {
    const struct passwd* const entry = getpwuid(user);
    return entry ? entry->pw_name : std::to_string(user);
}

// According to the user database; the groups of this log-in may be older.
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

std::string Describe(const Settings& settings) {
    constexpr char kLetters[] = {'N', 'O', 'E'};
    return (settings.baud == 0 ? "another rate" : std::to_string(settings.baud) + " baud") + ", " +
           std::to_string(settings.data_bits) + kLetters[static_cast<int>(settings.parity)] +
           std::to_string(settings.stop_bits) +
           (settings.hardware_flow ? ", RTS/CTS" : ", no flow control");
}

int ReadSettings(int descriptor, Settings& settings) {
    termios state{};
    if (tcgetattr(descriptor, &state) != 0)
        return errno;
    settings = SettingsOf(state);
    return 0;
}

std::string OpenProblem(const std::string& path, int error) {
    struct stat device {};
    if (error == EACCES && stat(path.c_str(), &device) == 0 && S_ISCHR(device.st_mode))
        return path + ": permission denied; " + WhoMayOpen(device);
    if (error == EBUSY)
        return path + ": the serial device is in use by another program";
    return path + ": cannot open the serial device: " + std::strerror(error);
}

Tty::Tty(Tty&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), path_(std::move(other.path_)) {}

Tty& Tty::operator=(Tty&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(path_, other.path_);
    return *this;
}

int Tty::Open(const std::string& path, std::string& problem) {
    Close();
    path_ = path;
    descriptor_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ < 0) {
        const int error = errno;
        problem = OpenProblem(path, error);
        return error;
    }
    const auto refuse = [&](const std::string& what, int error) {
        // Not Close(): that would end the exclusive use by the program that has it.
        close(std::exchange(descriptor_, -1));
        problem = path + ": " + what;
        return error;
    };
    if (isatty(descriptor_) == 0)
        return refuse("not a serial device", ENOTTY);
    // TIOCEXCL keeps out everybody but root; the lock keeps out programs that ask for it.
    if (flock(descriptor_, LOCK_EX | LOCK_NB) != 0)
        return refuse("the serial device is in use by another program", EBUSY);
    // Raw before the first byte, or the terminal would echo it.
    termios raw{};
    tcgetattr(descriptor_, &raw);
    cfmakeraw(&raw);
    if (tcsetattr(descriptor_, TCSANOW, &raw) != 0 || ioctl(descriptor_, TIOCEXCL) != 0) {
        const int error = errno;
        return refuse(std::string("cannot set up the serial device: ") + std::strerror(error),
                      error);
    }
    tcflush(descriptor_, TCIFLUSH);
    return 0;
}

void Tty::Close() {
    if (descriptor_ < 0)
        return;
    ioctl(descriptor_, TIOCNXCL);
    close(std::exchange(descriptor_, -1));
}

int Tty::Apply(const Settings& settings, std::string& problem) const {
    termios state{};
    if (!IsSupported(settings))
        return EINVAL;
    if (tcgetattr(descriptor_, &state) != 0)
        return errno;
    cfmakeraw(&state);
    state.c_cflag = ControlFlags(settings);
    cfsetspeed(&state, FindRate(settings.baud)->speed);
    // EINVAL does not say which settings were ignored; reading back does.
    if (tcsetattr(descriptor_, TCSANOW, &state) != 0 && errno != EINVAL)
        return errno;
    if (tcgetattr(descriptor_, &state) != 0)
        return errno;
    const Settings taken = SettingsOf(state);
    if (taken == settings && IsRaw(state))
        return 0;
    problem = path_ + ": the device did not take the settings " + Describe(settings) +
              "; it works with " + Describe(taken) + (IsRaw(state) ? "" : ", not raw");
    return EINVAL;
}

std::optional<std::size_t> Tty::Receive(std::span<std::uint8_t> buffer) const {
    const ssize_t count = read(descriptor_, buffer.data(), buffer.size());
    if (count > 0)
        return static_cast<std::size_t>(count);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return 0;
    return std::nullopt;
}

}  // namespace serial
