#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "unit/events/event_hub.h"

namespace unit {

// The traced events since the log was made, for conditions that ask whether something has happened,
// and for failure reports. Any thread.
class EventLog {
  public:
    // Events beyond the limit are dropped; the run must fail then.
    static constexpr std::size_t kMaxEvents = 1'000'000;

    // The hub must outlive it.
    explicit EventLog(EventHub& events, std::size_t limit = kMaxEvents);

    bool full() const { return Count() >= limit_; }
    std::size_t limit() const { return limit_; }

    std::size_t Count() const;
    // The first event from `from` on for which `matches` is true.
    std::optional<std::size_t> Find(std::size_t from,
                                    const std::function<bool(const Event&)>& matches) const;
    // The latest `max` events for which `matches` is true, in order, as trace records.
    std::vector<std::string> Latest(std::size_t max,
                                    const std::function<bool(const Event&)>& matches) const;

  private:
    const std::size_t limit_;
    mutable std::mutex mutex_;
    std::vector<TimedEvent> events_;
    // Last: ends before what its subscriber uses.
    EventHub::Subscription subscription_;
};

}  // namespace unit
