#include "unit/devices/pty_peer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

#include "platform/kernel/scheduler.h"

namespace unit {

PtyPeer::PtyPeer(std::function<void(std::span<const std::uint8_t>)> receive)
    : receive_(std::move(receive)) {
    far_end_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    char name[128];
    if (far_end_ < 0 || grantpt(far_end_) != 0 || unlockpt(far_end_) != 0 ||
        ptsname_r(far_end_, name, sizeof name) != 0) {
        problem_ = std::string("no pseudo-terminal: ") + std::strerror(errno);
        return;
    }
    near_end_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (near_end_ < 0) {
        problem_ = std::string(name) + ": " + std::strerror(errno);
        return;
    }
    // Nothing that the device sends before the tty is opened may be echoed back to it.
    termios raw{};
    tcgetattr(near_end_, &raw);
    cfmakeraw(&raw);
    tcsetattr(near_end_, TCSANOW, &raw);
    path_ = name;
    stop_event_ = eventfd(0, EFD_CLOEXEC);
    reader_ = std::thread([this] { ReadUntilStopped(); });
}

PtyPeer::~PtyPeer() {
    if (reader_.joinable()) {
        eventfd_write(stop_event_, 1);
        reader_.join();
    }
    for (const int file : {far_end_, near_end_, stop_event_})
        if (file >= 0)
            close(file);
}

void PtyPeer::ReadUntilStopped() {
    std::array<std::uint8_t, 1024> buffer;
    for (;;) {
        pollfd watched[] = {{stop_event_, POLLIN, 0}, {far_end_, POLLIN, 0}};
        if (poll(watched, std::size(watched), -1) < 0 && errno != EINTR)
            return;
        if (watched[0].revents != 0)
            return;
        const ssize_t count = read(far_end_, buffer.data(), buffer.size());
        if (count < 0 && errno != EAGAIN && errno != EINTR)
            return;
        if (count <= 0)
            continue;
        std::vector<std::uint8_t> bytes(buffer.begin(), buffer.begin() + count);
        platform::kernel::At(platform::kernel::Now(),
                             [this, bytes = std::move(bytes)] { receive_(bytes); });
    }
}

void PtyPeer::Send(std::span<const std::uint8_t> bytes) {
    static_cast<void>(!write(far_end_, bytes.data(), bytes.size()));
}

}  // namespace unit
