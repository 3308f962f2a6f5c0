#include "unit/control/watch.h"

#include "unit/events/event_text.h"

namespace unit {

Watch::Watch(EventHub& events, WatchedKinds kinds, std::function<void(const std::string&)> tell)
    : kinds_(kinds),
      tell_(std::move(tell)),
      subscription_(events.Subscribe([this](const TimedEvent& timed) { Hear(timed); })) {}

void Watch::Hear(const TimedEvent& timed) {
    if (const auto* const piece = std::get_if<LineBytes>(&timed.event))
        return HearLine(timed.time, *piece);
    if (!Wanted(timed.event))
        return;
    if (const auto text = TextOf(timed.event))
        tell_(TimedLine(timed.time, *text));
}

bool Watch::Wanted(const Event& event) const {
    if (std::holds_alternative<LineLogged>(event))
        return kinds_.log;
    if (std::holds_alternative<FaultApplied>(event))
        return kinds_.frames;
    if (std::holds_alternative<BroadcastPosted>(event) ||
        std::holds_alternative<PowerRequested>(event))
        return kinds_.broadcasts;
    return kinds_.rest;
}

void Watch::HearLine(std::chrono::microseconds time, const LineBytes& piece) {
    if (!kinds_.frames)
        return;
    for (const LineEntry& entry : line_.Take(time, piece))
        tell_(TimedLine(entry.time, {"frame", entry.Text()}));
}

}  // namespace unit
