#include "platform/device/memory_line.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"

namespace platform::device {

using kernel::KernelLock;

MemoryLine::MemoryLine(DWORD baud_rate, Receiver device)
    : baud_rate_(baud_rate), device_(std::move(device)) {
    settings_.DCBlength = sizeof(DCB);
    settings_.BaudRate = CBR_9600;
    settings_.fBinary = TRUE;
    settings_.fDtrControl = DTR_CONTROL_ENABLE;
    settings_.fRtsControl = RTS_CONTROL_ENABLE;
    settings_.ByteSize = 8;
    settings_.Parity = NOPARITY;
    settings_.StopBits = ONESTOPBIT;
}

kernel::Duration MemoryLine::WireTime(std::size_t bytes) const {
    constexpr std::int64_t kBitsAByte = 10;
    constexpr std::int64_t kMicrosecondsASecond = 1'000'000;
    // Rounded up: never faster than the wire.
    return kernel::Duration(
        (static_cast<std::int64_t>(bytes) * kBitsAByte * kMicrosecondsASecond + baud_rate_ - 1) /
        baud_rate_);
}

bool MemoryLine::SettingsFit() const {
    return settings_.BaudRate == baud_rate_ && settings_.ByteSize == 8 &&
           settings_.Parity == NOPARITY && settings_.StopBits == ONESTOPBIT;
}

void MemoryLine::Send(std::span<const std::uint8_t> bytes) {
    if (bytes.empty())
        return;
    KernelLock lock = kernel::LockKernel();
    const bool idle = to_port_.empty();
    to_port_.insert(to_port_.end(), bytes.begin(), bytes.end());
    if (!idle)
        return;
    to_port_free_ = std::max(to_port_free_, kernel::Now()) + WireTime(1);
    kernel::At(lock, to_port_free_, [self = shared_from_this()] { self->DeliverNext(); });
}

void MemoryLine::DeliverNext() {
    KernelLock lock = kernel::LockKernel();
    if (to_port_.empty())
        return;
    const std::uint8_t byte = to_port_.front();
    to_port_.pop_front();
    if (!to_port_.empty()) {
        to_port_free_ += WireTime(1);
        kernel::At(lock, to_port_free_, [self = shared_from_this()] { self->DeliverNext(); });
    }
    if (!plugged_ || !SettingsFit() || !port_)
        return;
    const Receiver port = port_;
    lock.unlock();
    port({&byte, 1});
}

std::size_t MemoryLine::Transmit(std::span<const std::uint8_t> bytes) {
    KernelLock lock = kernel::LockKernel();
    to_device_free_ = std::max(to_device_free_, kernel::Now()) + WireTime(bytes.size());
    std::vector<std::uint8_t> sent(bytes.begin(), bytes.end());
    kernel::At(lock, to_device_free_, [self = shared_from_this(), sent = std::move(sent)] {
        KernelLock inner = kernel::LockKernel();
        const bool arrives = self->plugged_ && self->SettingsFit();
        inner.unlock();
        if (arrives)
            self->device_(sent);
    });
    return bytes.size();
}

void MemoryLine::SetPlugged(bool plugged) {
    KernelLock lock = kernel::LockKernel();
    plugged_ = plugged;
}

DWORD MemoryLine::Open(Receiver receiver) {
    KernelLock lock = kernel::LockKernel();
    port_ = std::move(receiver);
    return ERROR_SUCCESS;
}

void MemoryLine::Close() {
    KernelLock lock = kernel::LockKernel();
    port_ = nullptr;
}

DWORD MemoryLine::ReadSettings(DCB& settings) {
    KernelLock lock = kernel::LockKernel();
    settings = settings_;
    return ERROR_SUCCESS;
}

DWORD MemoryLine::ApplySettings(const DCB& settings) {
    KernelLock lock = kernel::LockKernel();
    settings_ = settings;
    return ERROR_SUCCESS;
}

}  // namespace platform::device
