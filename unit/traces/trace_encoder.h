#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>

#include "platform/board.h"
#include "unit/events/event.h"
#include "unit/line/frame_monitor.h"
#include "unit/traces/trace_format.h"

namespace unit {

// What is known before the first event.
struct TraceStart {
    std::chrono::microseconds time{};  // of the unit
    platform::PowerSupply supply;
    std::string program;  // its version
};

// Turns events into the bytes of a trace, a part with each call. Splits the bytes of the line into
// frames itself and ignores those that the hub made of them, so that a recording, which has the
// bytes only, gives the same trace as the run. One thread.
class TraceEncoder {
  public:
    virtual ~TraceEncoder() = default;

    std::string Begin(const TraceStart& start);
    std::string Add(const TimedEvent& timed);
    // Once; nothing may follow.
    std::string End();

  protected:
    virtual void OnBegin(const TraceStart&) {}
    // Every event except the bytes of the line, which come as LineEntry.
    virtual void OnEvent(const TimedEvent& timed) = 0;
    // `time` is that of the last event.
    virtual void OnEnd(std::chrono::microseconds) {}

    void Append(std::string_view bytes) { out_ += bytes; }

  private:
    LineMonitor line_;
    std::chrono::microseconds last_time_{};
    std::string out_;
};

std::unique_ptr<TraceEncoder> MakeTraceEncoder(TraceFormat format);

}  // namespace unit
