#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace platform::device {

// The wires behind a serial port. Two kinds: memory_line.h (the other end is in this process, on
// the hardware's clock) and tty_line.h (a device of the host).
class SerialLine {
  public:
    using Receiver = std::function<void(std::span<const std::uint8_t>)>;

    virtual ~SerialLine() = default;

    // The port was opened: what arrives from now on goes to `receiver`, on any thread, without
    // locks held. ERROR_SUCCESS or the last error of the failed open.
    virtual DWORD Open(Receiver receiver) = 0;
    virtual void Close() = 0;

    virtual DWORD ReadSettings(DCB& settings) = 0;
    virtual DWORD ApplySettings(const DCB& settings) = 0;

    // Hands bytes to the wire: takes as many as it can now and returns that count (0 when full).
    virtual std::size_t Transmit(std::span<const std::uint8_t> bytes) = 0;
    // Called (any thread, no locks) when a full line can take more.
    virtual void OnWritable(std::function<void()> on_writable) = 0;
};

}  // namespace platform::device
