#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "unit/events/event.h"

namespace unit {

// Everything that happens at the unit's edges, told to whoever listens: the workbench, recordings,
// scenarios, `unitctl watch`. Any thread.
class EventHub {
  public:
    // Called one event at a time, on the thread where it happened and with locks of the platform
    // held perhaps: a listener takes note and returns; it calls neither the API nor the unit.
    using Listener = std::function<void(const TimedEvent&)>;

    // Ends the listening when it goes. The listener is not called any more once that has returned.
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
    [[nodiscard]] Subscription Listen(Listener listener);

    void Tell(Event event);

  private:
    struct Entry {
        int id;
        Listener listener;
    };

    void Forget(int id);

    std::mutex mutex_;
    std::vector<Entry> entries_;
    int last_id_ = 0;
};

}  // namespace unit
