#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "platform/device/serial_line.h"
#include "platform/kernel/clock.h"

namespace platform::device {

// A line whose other end, the attached device, is in this process. It keeps the wire's time: each
// byte takes ten bits at the device's rate, in each direction, so an answer is never there before
// a real one could be. A port with other settings than the device's exchanges nothing with it.
class MemoryLine final : public SerialLine, public std::enable_shared_from_this<MemoryLine> {
  public:
    // What bytes take on the wire: nothing is for tests that do not look at it and have many.
    enum class Pace { kBaudRate, kAtOnce };

    // What the port sends goes to `device` on the hardware's thread.
    MemoryLine(DWORD baud_rate, Receiver device, Pace pace = Pace::kBaudRate);

    // More bytes than a device keeps for the wire: what comes on top is lost.
    static constexpr std::size_t kMostWaiting = std::size_t{256} * 1024;

    // The device sends. Hardware's thread.
    void Send(std::span<const std::uint8_t> bytes);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnWritable(std::function<void()>) override {}

  private:
    // One direction: when its bytes have passed, to the fraction of a bit over any length.
    class Wire {
      public:
        Wire(DWORD baud_rate, Pace pace) : baud_rate_(baud_rate), pace_(pace) {}
        // The end of `bytes` more, which start now or after those before them.
        kernel::Time Start(std::size_t bytes);
        // The end of one more, right behind those before it.
        kernel::Time Continue();

      private:
        kernel::Time End() const;

        DWORD baud_rate_;
        Pace pace_;
        kernel::Time busy_since_{};
        std::int64_t bytes_ = 0;
    };

    void DeliverDue();
    bool SettingsFit() const;

    const DWORD baud_rate_;
    const Receiver device_;
    // Guarded by the kernel lock.
    Receiver port_;
    DCB settings_{};
    std::deque<std::uint8_t> waiting_for_port_;
    Wire to_port_;
    Wire to_device_;
};

}  // namespace platform::device
