#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>

#include "unit/events/event.h"

namespace unit {

// What happens to an event when the queue is full.
enum class WhenFull {
    kWait,  // for a unit whose clock stands still meanwhile
    kDrop,  // an EventsLost takes the place of the dropped ones
};

// Takes events from the unit's threads to the thread that writes a file.
class EventQueue {
  public:
    explicit EventQueue(WhenFull when_full) : when_full_(when_full) {}

    // Any thread. A time before that of the last event counts as that one.
    void Put(std::chrono::microseconds time, Event event);
    // No Put may follow.
    void Close();

    struct Batch {
        std::deque<TimedEvent> events;
        bool idle = false;   // no event came for as long as the limit
        bool ended = false;  // the queue is closed, and this was all
    };
    // Waits for events, at most for `limit` of host time. One thread.
    Batch Take(std::chrono::milliseconds limit);

  private:
    const WhenFull when_full_;
    std::mutex mutex_;
    std::condition_variable filled_;
    std::condition_variable emptied_;
    std::deque<TimedEvent> events_;
    std::chrono::microseconds last_time_{};
    std::uint64_t lost_ = 0;
    bool closed_ = false;
};

}  // namespace unit
