#pragma once

#include <map>
#include <string>

#include "unit/traces/trace_encoder.h"

namespace unit {

// The JSON format of trace events: a track for each kind of thing at the unit's external
// interfaces, and counters for the update's percent and the battery.
class PerfettoEncoder final : public TraceEncoder {
  public:
    // In the order of display; each is shown as a thread.
    enum class Track {
        kStep,
        kToUnit,
        kToDvr,
        kPower,
        kCard,
        kUnit,
        kDvr,
        kTouch,
        kCalls,
        kPowerMessages,
        kFaults,
        kLog,
        kOperator,
        kCount
    };

  private:
    void OnBegin(const TraceStart& start) override;
    void OnEvent(const TimedEvent& timed) override;
    void OnEnd(std::chrono::microseconds time) override;

    void Take(std::chrono::microseconds time, const LineEntry& entry);
    void Take(std::chrono::microseconds time, const platform::PowerSupply& supply);
    // Ends the slice that the track shows, and begins this one unless it has no name.
    void SetState(std::chrono::microseconds time, Track track, const std::string& name);
    void AddInstant(std::chrono::microseconds time, Track track, const std::string& name);
    void AddCounter(std::chrono::microseconds time, const std::string& name, int value);
    // `event` is the JSON of one event.
    void AddObject(const std::string& event);

    bool first_ = true;
    std::map<Track, std::string> states_;
    // When the frames end that were added last.
    std::map<Track, std::chrono::microseconds> busy_until_;
};

}  // namespace unit
