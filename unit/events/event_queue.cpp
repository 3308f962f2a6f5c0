#include "unit/events/event_queue.h"

#include <algorithm>
#include <utility>

namespace unit {
namespace {

constexpr std::size_t kMaxQueued = 1U << 16;

}  // namespace

void EventQueue::Put(std::chrono::microseconds time, Event event) {
    std::unique_lock lock(mutex_);
    if (when_full_ == WhenFull::kWait)
        emptied_.wait(lock, [this] { return events_.size() < kMaxQueued; });
    last_time_ = std::max(last_time_, time);
    if (events_.size() >= kMaxQueued) {
        ++lost_;
        return;
    }
    if (lost_ > 0)
        events_.push_back({last_time_, EventsLost{std::exchange(lost_, 0)}});
    events_.push_back({last_time_, std::move(event)});
    filled_.notify_one();
}

void EventQueue::Close() {
    const std::scoped_lock lock(mutex_);
    closed_ = true;
    if (lost_ > 0)
        events_.push_back({last_time_, EventsLost{std::exchange(lost_, 0)}});
    filled_.notify_one();
}

EventQueue::Batch EventQueue::Take(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    Batch batch;
    batch.idle = !filled_.wait_for(lock, limit, [this] { return !events_.empty() || closed_; });
    batch.events.swap(events_);
    batch.ended = closed_ && batch.events.empty();
    emptied_.notify_all();
    return batch;
}

}  // namespace unit
