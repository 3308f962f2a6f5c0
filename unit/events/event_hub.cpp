#include "unit/events/event_hub.h"

#include <utility>

#include "platform/kernel/clock.h"

namespace unit {

EventHub::Subscription::Subscription(Subscription&& other) noexcept
    : hub_(std::exchange(other.hub_, nullptr)), id_(other.id_) {}

EventHub::Subscription& EventHub::Subscription::operator=(Subscription&& other) noexcept {
    std::swap(hub_, other.hub_);
    std::swap(id_, other.id_);
    return *this;
}

EventHub::Subscription::~Subscription() {
    if (hub_)
        hub_->Cancel(id_);
}

EventHub::Subscription EventHub::Subscribe(Subscriber subscriber) {
    const std::scoped_lock lock(mutex_);
    entries_.push_back({++last_id_, std::move(subscriber)});
    return {*this, last_id_};
}

void EventHub::Publish(Event event) {
    const std::scoped_lock lock(mutex_);
    const TimedEvent timed{platform::kernel::Now(), std::move(event)};
    Deliver(timed);
    if (const auto* const bytes = std::get_if<LineBytes>(&timed.event))
        for (LineEntry& entry : line_.Take(timed.time, bytes->direction, bytes->bytes))
            Deliver({entry.time, std::move(entry)});
}

void EventHub::Deliver(const TimedEvent& timed) const {
    for (const Entry& entry : entries_)
        entry.subscriber(timed);
}

void EventHub::Cancel(int id) {
    const std::scoped_lock lock(mutex_);
    std::erase_if(entries_, [id](const Entry& entry) { return entry.id == id; });
}

}  // namespace unit
