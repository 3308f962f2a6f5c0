#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "unit/events/event.h"

namespace unit {

// Publishes everything that happens at the unit's external interfaces to its subscribers: the
// workbench, recordings, scenarios, `unitctl watch`. Decodes the serial line: the frames that
// LineBytes complete are published after them as LineEntry events. Any thread, without the kernel's
// lock.
class EventHub {
  public:
    // Called for one event at a time, on the thread where it happened, possibly with locks of the
    // platform other than the kernel's: a subscriber stores the event or schedules an action, and
    // returns; it calls neither the API nor the unit.
    using Subscriber = std::function<void(const TimedEvent&)>;

    // Cancels the subscription when destroyed. The subscriber is not called after the destructor
    // has returned.
    class Subscription {
      public:
        Subscription() = default;
        Subscription(Subscription&& other) noexcept;
        Subscription& operator=(Subscription&& other) noexcept;
        ~Subscription();

      private:
        friend EventHub;
        Subscription(EventHub& hub, int id) : hub_(&hub), id_(id) {}

        EventHub* hub_ = nullptr;
        int id_ = 0;
    };

    // The hub must outlive the subscription.
    [[nodiscard]] Subscription Subscribe(Subscriber subscriber);

    void Publish(Event event);

  private:
    struct Entry {
        int id;
        Subscriber subscriber;
    };

    void Cancel(int id);
    void Deliver(const TimedEvent& timed) const;

    std::mutex mutex_;
    std::vector<Entry> entries_;
    LineMonitor line_;
    int last_id_ = 0;
};

}  // namespace unit
