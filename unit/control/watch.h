#pragma once

#include <functional>
#include <string>

#include "unit/events/event_hub.h"
#include "unit/line/frame_monitor.h"

namespace unit {

// What a watcher wants to hear.
struct WatchedKinds {
    bool frames = false;
    bool broadcasts = false;  // and the power requests that they answer
    bool log = false;
    bool rest = false;
};

// Tells the unit's events as lines of text: the unit's time in seconds, the kind, what happened.
class Watch {
  public:
    // `tell` is called where the event happened, see EventHub::Subscriber.
    Watch(EventHub& events, WatchedKinds kinds, std::function<void(const std::string&)> tell);
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

  private:
    void Hear(const TimedEvent& timed);
    void HearLine(std::chrono::microseconds time, const LineBytes& piece);
    bool Wanted(const Event& event) const;

    const WatchedKinds kinds_;
    const std::function<void(const std::string&)> tell_;
    LineMonitor line_;
    // Last: nothing is heard while the rest goes.
    const EventHub::Subscription subscription_;
};

}  // namespace unit
