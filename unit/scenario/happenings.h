#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "unit/events/event_hub.h"
#include "unit/line/frame_monitor.h"

namespace unit {

// What came and went at the unit's edges, for conditions that ask whether something has happened.
using Happening = std::variant<LineLogged, BroadcastPosted, DriverCalled, LineEntry, FaultApplied>;
inline constexpr std::size_t kHappeningKinds = std::variant_size_v<Happening>;

struct TimedHappening {
    std::chrono::microseconds time;  // of the unit
    Happening happening;

    // In one line, with the time: "    31.250  log  ...".
    std::string Text() const;
};

// All of them since it was made. Any thread.
class Happenings {
  public:
    // What comes on top is not kept: a scenario that goes on beyond could not tell the truth.
    static constexpr std::size_t kMost = 1'000'000;

    // The hub must outlive it.
    explicit Happenings(EventHub& events);

    std::size_t Count() const;
    // The first one at `from` or behind it that `matches`.
    std::optional<std::size_t> Find(std::size_t from,
                                    const std::function<bool(const Happening&)>& matches) const;
    // The latest `most` that `matches`, in order, a line each.
    std::vector<std::string> Latest(std::size_t most,
                                    const std::function<bool(const Happening&)>& matches) const;

  private:
    void Note(const TimedEvent& event);

    mutable std::mutex mutex_;
    std::vector<TimedHappening> all_;
    LineMonitor line_;
    // Ends before what it notes down to.
    EventHub::Subscription subscription_;
};

}  // namespace unit
