#include "platform/device/serial_port.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"

namespace platform::device {

using kernel::KernelLock;
using kernel::Time;
using std::chrono::milliseconds;

SerialPort::SerialPort(std::shared_ptr<SerialLine> line) : line_(std::move(line)) {}

DWORD SerialPort::Start(const std::shared_ptr<SerialPort>& self) {
    const std::weak_ptr<SerialPort> weak = self;
    line_->OnWritable([weak] {
        const std::shared_ptr<SerialPort> port = weak.lock();
        if (!port)
            return;
        KernelLock lock = kernel::LockKernel();
        ++port->writable_count_;
        kernel::Wake(lock);
    });
    return line_->Open([weak](std::span<const std::uint8_t> bytes) {
        if (const std::shared_ptr<SerialPort> port = weak.lock())
            port->Receive(bytes);
    });
}

void SerialPort::Receive(std::span<const std::uint8_t> bytes) {
    KernelLock lock = kernel::LockKernel();
    const std::size_t space = kMaxReadAhead - std::min(kMaxReadAhead, input_.size());
    for (const std::uint8_t byte : bytes.first(std::min(space, bytes.size())))
        input_.push_back(std::byte{byte});
    last_arrival_ = kernel::Now();
    kernel::Wake(lock);
}

Time SerialPort::TotalDeadline(DWORD multiplier, DWORD constant, std::size_t count) const {
    if (multiplier == 0 && constant == 0)
        return kernel::kNever;
    // The greatest total overflows a Time.
    constexpr std::uint64_t kLongest = MAXDWORD;
    const std::uint64_t total = std::uint64_t{multiplier} * count + constant;
    return kernel::Now() + milliseconds(std::min(total, kLongest));
}

DWORD SerialPort::Read(std::span<std::byte> buffer, DWORD& done) {
    KernelLock lock = kernel::LockKernel();
    const COMMTIMEOUTS limits = timeouts_;
    std::size_t wanted = buffer.size();
    const bool immediate = limits.ReadIntervalTimeout == MAXDWORD;
    Time deadline = TotalDeadline(limits.ReadTotalTimeoutMultiplier,
                                  limits.ReadTotalTimeoutConstant, buffer.size());
    if (immediate && limits.ReadTotalTimeoutMultiplier == MAXDWORD) {
        // Documented special case: returns what is there, or waits for the first byte.
        wanted = std::min<std::size_t>(wanted, 1);
        deadline = kernel::Now() + milliseconds(limits.ReadTotalTimeoutConstant);
    } else if (immediate && deadline == kernel::kNever) {
        deadline = kernel::Now();
    }
    const bool uses_interval = !immediate && limits.ReadIntervalTimeout != 0;
    const Time interval = milliseconds(uses_interval ? limits.ReadIntervalTimeout : 0);
    const auto enough = [&] { return closed_ || input_.size() >= wanted; };
    for (;;) {
        const bool gap_counts = uses_interval && !input_.empty();
        const std::size_t before = input_.size();
        const Time until = gap_counts ? std::min(deadline, last_arrival_ + interval) : deadline;
        const auto moved = [&] { return enough() || (uses_interval && input_.size() != before); };
        const bool more = kernel::Block(lock, moved, until);
        if (!more || enough())
            break;
    }
    if (closed_)
        return ERROR_INVALID_HANDLE;
    const std::size_t count = std::min(buffer.size(), input_.size());
    std::copy_n(input_.begin(), count, buffer.begin());
    input_.erase(input_.begin(), input_.begin() + static_cast<std::ptrdiff_t>(count));
    done = static_cast<DWORD>(count);
    return ERROR_SUCCESS;
}

DWORD SerialPort::Write(std::span<const std::byte> bytes, DWORD& done) {
    KernelLock lock = kernel::LockKernel();
    const Time deadline = TotalDeadline(timeouts_.WriteTotalTimeoutMultiplier,
                                        timeouts_.WriteTotalTimeoutConstant, bytes.size());
    while (done < bytes.size() && !closed_) {
        const std::uint64_t seen = writable_count_;
        const std::span<const std::byte> rest = bytes.subspan(done);
        lock.unlock();
        const std::size_t taken =
            line_->Transmit({reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size()});
        lock.lock();
        done += static_cast<DWORD>(taken);
        if (done < bytes.size() && taken == 0 &&
            !kernel::Block(
                lock, [&] { return writable_count_ != seen || closed_; }, deadline))
            break;
    }
    return closed_ ? ERROR_INVALID_HANDLE : ERROR_SUCCESS;
}

void SerialPort::HandleClosed() {
    line_->Close();
    KernelLock lock = kernel::LockKernel();
    closed_ = true;
    kernel::Wake(lock);
}

DWORD SerialPort::ApplySettings(const DCB& settings) {
    if (settings.DCBlength != sizeof(DCB) || settings.BaudRate == 0 || settings.ByteSize < 5 ||
        settings.ByteSize > 8 || settings.Parity > SPACEPARITY || settings.StopBits > TWOSTOPBITS)
        return ERROR_INVALID_PARAMETER;
    return line_->ApplySettings(settings);
}

COMMTIMEOUTS SerialPort::timeouts() const {
    KernelLock lock = kernel::LockKernel();
    return timeouts_;
}

void SerialPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
    KernelLock lock = kernel::LockKernel();
    timeouts_ = timeouts;
}

DWORD SerialPort::event_mask() const {
    KernelLock lock = kernel::LockKernel();
    return event_mask_;
}

void SerialPort::SetEventMask(DWORD mask) {
    KernelLock lock = kernel::LockKernel();
    event_mask_ = mask;
}

bool SerialPort::IsClosed() const {
    KernelLock lock = kernel::LockKernel();
    return closed_;
}

DWORD SerialDriver::Open(DWORD, DWORD, std::shared_ptr<Stream>& stream) {
    const std::scoped_lock lock(mutex_);
    const std::shared_ptr<SerialPort> open = port_.lock();
    if (open && !open->IsClosed())
        return ERROR_ACCESS_DENIED;
    auto port = std::make_shared<SerialPort>(line_);
    const DWORD error = port->Start(port);
    if (error != ERROR_SUCCESS)
        return error;
    port_ = port;
    stream = std::move(port);
    return ERROR_SUCCESS;
}

}  // namespace platform::device
