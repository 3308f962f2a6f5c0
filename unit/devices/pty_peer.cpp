#include "unit/devices/pty_peer.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <vector>

#include "platform/kernel/scheduler.h"

namespace unit {

PtyPeer::PtyPeer(std::function<void(std::span<const std::uint8_t>)> receive)
    : receive_(std::move(receive)) {
    if (!serial::MakePseudoTerminal(terminal_, problem_))
        return;
    stop_event_ = eventfd(0, EFD_CLOEXEC);
    reader_ = std::thread([this] { ReadUntilStopped(); });
}

PtyPeer::~PtyPeer() {
    if (reader_.joinable()) {
        eventfd_write(stop_event_, 1);
        reader_.join();
    }
    for (const int file : {terminal_.far_end, terminal_.near_end, stop_event_})
        if (file >= 0)
            close(file);
}

void PtyPeer::ReadUntilStopped() {
    std::array<std::uint8_t, 1024> buffer;
    for (;;) {
        pollfd watched[] = {{stop_event_, POLLIN, 0}, {terminal_.far_end, POLLIN, 0}};
        if (poll(watched, std::size(watched), -1) < 0 && errno != EINTR)
            return;
        if (watched[0].revents != 0)
            return;
        const ssize_t count = read(terminal_.far_end, buffer.data(), buffer.size());
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
    static_cast<void>(!write(terminal_.far_end, bytes.data(), bytes.size()));
}

}  // namespace unit
