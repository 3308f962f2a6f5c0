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
#include "unit/line/frame_splitter.h"
#include "unit/line/line_faults.h"

namespace unit {

// A plug in the middle of a serial line, of any kind: everything between the program's port and the
// line passes through here, in both directions, and can be listened to, faulted and cut off. Any
// thread.
//
// Without faults a chunk passes at once, on the thread that brings it. A rule about frames holds
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
    void OnWritable(std::function<void()> on_writable) override;

  private:
    struct Chunk {
        platform::kernel::Time due;
        std::vector<std::uint8_t> bytes;
    };

    // One direction of the line.
    struct Channel {
        explicit Channel(Direction of) : direction(of) {}

        const Direction direction;
        FrameSplitter splitter;
        platform::kernel::Time last_arrival{};
        std::deque<Chunk> waiting;  // in order of time
        std::size_t waiting_bytes = 0;
        platform::kernel::Time last_due{};
        // When the hardware looks next, for `waiting` or for bytes held back too long.
        platform::kernel::Time alarm = platform::kernel::kNever;
    };

    Channel& ChannelOf(Direction direction) {
        return direction == Direction::kToUnit ? to_unit_ : to_dvr_;
    }

    void Arrive(std::span<const std::uint8_t> bytes);
    void Writable();

    // With the lock held.
    bool IsFree(const Channel& channel) const;
    void Pass(Channel& channel, std::span<const std::uint8_t> bytes);
    void PassSegment(Channel& channel, std::span<const std::uint8_t> bytes, bool frame);
    void Queue(Channel& channel, const ByteSlots& slots);
    void Release(Channel& channel);
    bool Deliver(Channel& channel, Chunk& chunk);
    void LookAgain(Channel& channel);
    void Forget();

    const std::shared_ptr<SerialLine> line_;
    const std::shared_ptr<LineFaults> faults_;
    const Listener listener_;
    // Guards what follows, and keeps the chunks of a direction in order; the kernel lock may be
    // taken under it, never the other way round.
    std::mutex mutex_;
    Receiver port_;
    std::function<void()> on_writable_;
    bool plugged_ = true;
    // The line took less than it was given and has not become writable since.
    bool full_ = false;
    Channel to_unit_{Direction::kToUnit};
    Channel to_dvr_{Direction::kToDvr};
};

}  // namespace unit
