#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>

#include "platform/device/serial_line.h"
#include "platform/device/stream_driver.h"
#include "platform/kernel/clock.h"

namespace platform::device {

// The open serial port. Arriving bytes are read ahead into memory, so reading single bytes needs no
// call of the host. Time-outs follow COMMTIMEOUTS.
class SerialPort final : public Stream {
  public:
    explicit SerialPort(std::shared_ptr<SerialLine> line);

    // Opens the line; ERROR_SUCCESS or the line's error.
    DWORD Start(const std::shared_ptr<SerialPort>& self);

    DWORD Read(std::span<std::byte> buffer, DWORD& done) override;
    DWORD Write(std::span<const std::byte> bytes, DWORD& done) override;
    void HandleClosed() override;

    DWORD ReadSettings(DCB& settings) { return line_->ReadSettings(settings); }
    DWORD ApplySettings(const DCB& settings);
    COMMTIMEOUTS timeouts() const;
    void SetTimeouts(const COMMTIMEOUTS& timeouts);
    DWORD event_mask() const;
    void SetEventMask(DWORD mask);

    bool IsClosed() const;

  private:
    void Receive(std::span<const std::uint8_t> bytes);
    kernel::Time TotalDeadline(DWORD multiplier, DWORD constant, std::size_t count) const;

    // More than a second of bytes at 460800 baud; bytes that do not fit are lost.
    static constexpr std::size_t kMaxReadAhead = 64 * 1024;

    const std::shared_ptr<SerialLine> line_;
    // Guarded by the kernel lock.
    std::deque<std::byte> input_;
    kernel::Time last_arrival_{};
    COMMTIMEOUTS timeouts_{};
    DWORD event_mask_ = 0;
    bool closed_ = false;
    // How often the line has become writable.
    std::uint64_t writable_count_ = 0;
};

// A serial driver over a line, for one handle at a time.
class SerialDriver final : public StreamDriver {
  public:
    explicit SerialDriver(std::shared_ptr<SerialLine> line) : line_(std::move(line)) {}

    DWORD Open(DWORD access, DWORD share_mode, std::shared_ptr<Stream>& stream) override;

  private:
    const std::shared_ptr<SerialLine> line_;
    std::mutex mutex_;
    std::weak_ptr<SerialPort> port_;
};

}  // namespace platform::device
