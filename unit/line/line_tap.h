#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>

#include "platform/device/serial_line.h"
#include "unit/events/event.h"

namespace unit {

// A plug in the middle of a serial line, of any kind: everything between the program's port and the
// line passes through here, in both directions, and can be listened to and cut off. Any thread.
class LineTap final : public platform::device::SerialLine {
  public:
    // Hears what the program is given, and what it sends, in the order of the line. Called on any
    // thread with the tap's lock held, never with the kernel's: it must not call the tap.
    using Listener = std::function<void(Direction, std::span<const std::uint8_t>)>;

    LineTap(std::shared_ptr<SerialLine> line, Listener listener);
    ~LineTap() override;

    // Pulls the plug or puts it back. While it is out, nothing passes; what the program sends then
    // is heard here and lost.
    void SetPlugged(bool plugged);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnRoom(std::function<void()> room) override;

  private:
    void Arrive(std::span<const std::uint8_t> bytes);

    const std::shared_ptr<SerialLine> line_;
    const Listener listener_;
    // Guards what follows, and keeps the pieces of a direction in order; the kernel lock may be
    // taken under it, never the other way round.
    std::mutex mutex_;
    Receiver port_;
    bool plugged_ = true;
};

}  // namespace unit
