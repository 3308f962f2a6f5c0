#include "unit/line/memory_line.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"

namespace unit {

namespace kernel = platform::kernel;
using kernel::KernelLock;

MemoryLine::MemoryLine(DWORD baud_rate, Receiver device, Pace pace)
    : baud_rate_(baud_rate),
      device_(std::move(device)),
      to_port_(baud_rate, pace),
      to_device_(baud_rate, pace) {
    settings_.DCBlength = sizeof(DCB);
    settings_.BaudRate = CBR_9600;
    settings_.fBinary = TRUE;
    settings_.fDtrControl = DTR_CONTROL_ENABLE;
    settings_.fRtsControl = RTS_CONTROL_ENABLE;
    settings_.ByteSize = 8;
    settings_.Parity = NOPARITY;
    settings_.StopBits = ONESTOPBIT;
}

kernel::Time MemoryLine::Wire::End() const {
    if (pace_ == Pace::kAtOnce)
        return busy_since_;
    return busy_since_ + WireTime(bytes_, baud_rate_);
}

kernel::Time MemoryLine::Wire::Start(std::size_t bytes) {
    if (kernel::Now() > End()) {
        busy_since_ = kernel::Now();
        bytes_ = 0;
    }
    bytes_ += static_cast<std::int64_t>(bytes);
    return End();
}

kernel::Time MemoryLine::Wire::Continue() {
    ++bytes_;
    return End();
}

bool MemoryLine::SettingsMatch() const {
    return settings_.BaudRate == baud_rate_ && settings_.ByteSize == 8 &&
           settings_.Parity == NOPARITY && settings_.StopBits == ONESTOPBIT;
}

void MemoryLine::Send(std::span<const std::uint8_t> bytes) {
    if (bytes.empty())
        return;
    KernelLock lock = kernel::LockKernel();
    const bool idle = waiting_for_port_.empty();
    bytes = bytes.first(std::min(kMaxWaiting - waiting_for_port_.size(), bytes.size()));
    waiting_for_port_.insert(waiting_for_port_.end(), bytes.begin(), bytes.end());
    if (idle)
        kernel::At(lock, to_port_.Start(1), [self = shared_from_this()] { self->DeliverDue(); });
}

void MemoryLine::DeliverDue() {
    KernelLock lock = kernel::LockKernel();
    // One byte, and all that were due before a free-running host got here.
    std::vector<std::uint8_t> arrived;
    kernel::Time next{};
    do {
        arrived.push_back(waiting_for_port_.front());
        waiting_for_port_.pop_front();
        if (!waiting_for_port_.empty())
            next = to_port_.Continue();
    } while (!waiting_for_port_.empty() && next <= kernel::Now());
    if (!waiting_for_port_.empty())
        kernel::At(lock, next, [self = shared_from_this()] { self->DeliverDue(); });
    if (!SettingsMatch() || !port_)
        return;
    const Receiver port = port_;
    lock.unlock();
    port(arrived);
}

std::size_t MemoryLine::Transmit(std::span<const std::uint8_t> bytes) {
    KernelLock lock = kernel::LockKernel();
    const kernel::Time arrival = to_device_.Start(bytes.size());
    std::vector<std::uint8_t> sent(bytes.begin(), bytes.end());
    kernel::At(lock, arrival, [self = shared_from_this(), sent = std::move(sent)] {
        KernelLock inner = kernel::LockKernel();
        const bool arrives = self->SettingsMatch();
        inner.unlock();
        if (arrives)
            self->device_(sent);
    });
    return bytes.size();
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

}  // namespace unit
