#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "platform/device/serial_line.h"
#include "platform/kernel/clock.h"

namespace unit {

inline constexpr DWORD kDvrBaudRate = 460800;

// The time that bytes take on the wire: ten bits each, rounded up to the microsecond.
constexpr platform::kernel::Duration WireTime(std::int64_t bytes, std::int64_t baud_rate) {
    constexpr std::int64_t kBitsPerByte = 10;
    constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;
    return platform::kernel::Duration(
        (bytes * kBitsPerByte * kMicrosecondsPerSecond + baud_rate - 1) / baud_rate);
}

// A simulated wire between the port and a device in this process. Each direction takes the time
// that its bytes need at the device's baud rate, so no response arrives sooner than on a real
// wire. Nothing gets through while the port's settings differ from the device's.
class MemoryLine final : public platform::device::SerialLine,
                         public std::enable_shared_from_this<MemoryLine> {
  public:
    // kAtOnce takes no wire time: for tests that send much and do not depend on it.
    enum class Pace { kBaudRate, kAtOnce };

    // `device` receives what the port sends, on the host thread.
    MemoryLine(DWORD baud_rate, Receiver device, Pace pace = Pace::kBaudRate);

    // The device's transmit buffer; bytes that do not fit are lost.
    static constexpr std::size_t kMaxWaiting = std::size_t{256} * 1024;

    // Sends from the device. Host thread.
    void Send(std::span<const std::uint8_t> bytes);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnWritable(std::function<void()>) override {}

  private:
    // One direction. Counts from the start of a run of bytes, so rounding does not add up.
    class Wire {
      public:
        Wire(DWORD baud_rate, Pace pace) : baud_rate_(baud_rate), pace_(pace) {}
        // When `bytes` more have passed; they start now, or when the wire is free.
        platform::kernel::Time Start(std::size_t bytes);
        // When one more byte has passed that directly follows the last one.
        platform::kernel::Time Continue();

      private:
        platform::kernel::Time End() const;

        DWORD baud_rate_;
        Pace pace_;
        platform::kernel::Time busy_since_{};
        std::int64_t bytes_ = 0;
    };

    void DeliverDue();
    bool SettingsMatch() const;

    const DWORD baud_rate_;
    const Receiver device_;
    // Guarded by the kernel lock.
    Receiver port_;
    DCB settings_{};
    std::deque<std::uint8_t> waiting_for_port_;
    Wire to_port_;
    Wire to_device_;
};

}  // namespace unit
