#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace platform::device {

// The wires behind a serial port.
class SerialLine {
  public:
    using Receiver = std::function<void(std::span<const std::uint8_t>)>;

    virtual ~SerialLine() = default;

    // The port was opened. `receiver` gets the bytes that arrive from now on, on any thread,
    // without locks. ERROR_SUCCESS or the last error of the failed open.
    virtual DWORD Open(Receiver receiver) = 0;
    virtual void Close() = 0;

    virtual DWORD ReadSettings(DCB& settings) = 0;
    virtual DWORD ApplySettings(const DCB& settings) = 0;

    // Accepts as many bytes as the line can take now and returns their number, 0 when full.
    virtual std::size_t Transmit(std::span<const std::uint8_t> bytes) = 0;
    // `on_writable` is called on any thread, without locks, when a full line accepts bytes again.
    virtual void OnWritable(std::function<void()> on_writable) = 0;
};

}  // namespace platform::device
