#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "platform/device/serial_line.h"
#include "platform/kernel/clock.h"
#include "unit/events/event.h"
#include "unit/line/frame_cutter.h"
#include "unit/line/line_faults.h"

namespace unit {

// A plug in the middle of a serial line, of any kind: everything between the program's port and the
// line passes through here, in both directions, and can be listened to, faulted and cut off. Any
// thread.
//
// Without faults a piece passes at once, on the thread that brings it. A rule about frames holds
// the beginning of a frame back until its rest has come, or 50 ms have passed without another byte.
// What a fault delays is delivered by the hardware's thread, and is lost when the port closes or
// the plug is pulled meanwhile. The faults add no wire time of their own.
class LineTap final : public platform::device::SerialLine,
                      public std::enable_shared_from_this<LineTap> {
  public:
    // Hears what the program is given, after the faults, and what it sends, before them, in the
    // order of the line. Called on any thread with the tap's lock held, never with the kernel's: it
    // must not call the tap.
    using Listener = std::function<void(Direction, std::span<const std::uint8_t>)>;

    LineTap(std::shared_ptr<SerialLine> line, std::shared_ptr<LineFaults> faults,
            Listener listener);
    ~LineTap() override;

    // Pulls the plug or puts it back. While it is out, nothing passes; what the program sends then
    // is heard here and lost.
    void SetPlugged(bool plugged);

    // Puts bytes on the line as if its other end had sent them now; no rule applies to them.
    void Inject(Direction direction, std::span<const std::uint8_t> bytes);

    DWORD Open(Receiver receiver) override;
    void Close() override;
    DWORD ReadSettings(DCB& settings) override;
    DWORD ApplySettings(const DCB& settings) override;
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override;
    void OnRoom(std::function<void()> room) override;

  private:
    struct Piece {
        platform::kernel::Time due;
        std::vector<std::uint8_t> bytes;
    };

    // One direction of the line.
    struct Way {
        explicit Way(Direction of) : direction(of) {}

        const Direction direction;
        FrameCutter cutter;
        platform::kernel::Time last_arrival{};
        std::deque<Piece> waiting;  // in order of time
        std::size_t waiting_bytes = 0;
        platform::kernel::Time last_due{};
        // When the hardware looks next, for `waiting` or for bytes held back too long.
        platform::kernel::Time alarm = platform::kernel::kNever;
    };

    Way& WayOf(Direction direction) { return direction == Direction::kToUnit ? to_unit_ : to_dvr_; }

    void Arrive(std::span<const std::uint8_t> bytes);
    void Room();

    // With the lock held.
    bool IsFree(const Way& way) const;
    void Pass(Way& way, std::span<const std::uint8_t> bytes);
    void PassCut(Way& way, std::span<const std::uint8_t> bytes, bool frame);
    void Queue(Way& way, const Cells& cells);
    void Release(Way& way);
    bool Deliver(Way& way, Piece& piece);
    void LookAgain(Way& way);
    void Forget();

    const std::shared_ptr<SerialLine> line_;
    const std::shared_ptr<LineFaults> faults_;
    const Listener listener_;
    // Guards what follows, and keeps the pieces of a direction in order; the kernel lock may be
    // taken under it, never the other way round.
    std::mutex mutex_;
    Receiver port_;
    std::function<void()> room_;
    bool plugged_ = true;
    // The line took less than it was given and has not told of room since.
    bool full_ = false;
    Way to_unit_{Direction::kToUnit};
    Way to_dvr_{Direction::kToDvr};
};

}  // namespace unit
