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
#include "unit/line/frame_splitter.h"
#include "unit/line/line_faults.h"

namespace unit {

// Sits between the program's port and a line of any kind: observes the bytes of both directions,
// applies faults and pulls the plug. Any thread.
//
// Without faults a chunk passes at once, on the thread that brings it. A rule about frames holds
// the start of a frame until the rest arrives, or until 50 ms pass without a byte. The host thread
// delivers what a fault delays; it is lost when the port closes or the plug is pulled before.
// Faults add no wire time.
class LineTap final : public platform::device::SerialLine,
                      public std::enable_shared_from_this<LineTap> {
  public:
    // Sees what the program receives, after the faults, and what it sends, before them, in the
    // order of the line. Called on any thread with the tap's lock, without the kernel's: it must
    // not call the tap.
    using Observer = std::function<void(Direction, std::span<const std::uint8_t>)>;

    LineTap(std::shared_ptr<SerialLine> line, std::shared_ptr<LineFaults> faults,
            Observer observer);
    ~LineTap() override;

    // Pulls out the plug or plugs it in. While it is out, nothing passes; what the program sends is
    // observed and lost.
    void SetPlugged(bool plugged);

    // Puts bytes on the line as if its other end had sent them now; no fault applies to them.
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
        std::deque<Chunk> waiting;  // by due time
        std::size_t waiting_bytes = 0;
        platform::kernel::Time last_due{};
        // When `waiting` and the held bytes are checked next.
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
    void ScheduleCheck(Channel& channel);
    void DropWaiting();

    const std::shared_ptr<SerialLine> line_;
    const std::shared_ptr<LineFaults> faults_;
    const Observer observer_;
    // Guards the members below and keeps the chunks of a direction in order. Taken before the
    // kernel lock, never after it.
    std::mutex mutex_;
    Receiver port_;
    std::function<void()> on_writable_;
    bool plugged_ = true;
    // The line refused bytes and has not become writable since.
    bool full_ = false;
    Channel to_unit_{Direction::kToUnit};
    Channel to_dvr_{Direction::kToDvr};
};

}  // namespace unit
