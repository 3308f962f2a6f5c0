#include "unit/traces/trace_encoder.h"

#include <algorithm>

#include "unit/events/event_text.h"
#include "unit/traces/pcapng_encoder.h"
#include "unit/traces/perfetto_encoder.h"

namespace unit {
namespace {

class TextEncoder final : public TraceEncoder {
    void OnEvent(const TimedEvent& timed) override {
        if (IsTraced(timed.event))
            Append(TraceRecord(timed) + "\n");
    }
};

}  // namespace

std::string TraceEncoder::Begin(const TraceStart& start) {
    last_time_ = start.time;
    OnBegin(start);
    return std::exchange(out_, {});
}

std::string TraceEncoder::Add(const TimedEvent& timed) {
    last_time_ = std::max(last_time_, timed.time);
    if (const auto* const line = std::get_if<LineBytes>(&timed.event)) {
        line->ForEachChunk(
            [&](std::chrono::microseconds after, std::span<const std::uint8_t> bytes) {
                last_time_ = std::max(last_time_, timed.time + after);
                for (LineEntry& entry : line_.Take(timed.time + after, line->direction, bytes))
                    OnEvent({entry.time, std::move(entry)});
            });
    } else if (!std::holds_alternative<LineEntry>(timed.event)) {
        OnEvent(timed);
    }
    return std::exchange(out_, {});
}

std::string TraceEncoder::End() {
    for (LineEntry& entry : line_.Finish())
        OnEvent({entry.time, std::move(entry)});
    OnEnd(last_time_);
    return std::exchange(out_, {});
}

std::unique_ptr<TraceEncoder> MakeTraceEncoder(TraceFormat format) {
    switch (format) {
        case TraceFormat::kPcapng:
            return std::make_unique<PcapngEncoder>();
        case TraceFormat::kPerfetto:
            return std::make_unique<PerfettoEncoder>();
        case TraceFormat::kText:
            break;
    }
    return std::make_unique<TextEncoder>();
}

}  // namespace unit
