#pragma once

#include <string>
#include <vector>

#include "unit/traces/trace_encoder.h"

namespace unit {

// A packet for each frame and each run of stray bytes, on an interface for each direction, with the
// unit's time. A fault of the line is a comment on the packet that it changed; a fault without one
// and a gap in the trace are comments on an empty packet.
class PcapngEncoder final : public TraceEncoder {
    struct Packet {
        LineEntry entry;
        std::vector<std::string> comments;
    };

    void OnBegin(const TraceStart& start) override;
    void OnEvent(const TimedEvent& timed) override;
    void OnEnd(std::chrono::microseconds time) override;

    void AddFault(std::chrono::microseconds time, const std::string& text);
    void AddEntry(const LineEntry& entry);
    void WriteSent();
    void WriteComment(std::chrono::microseconds time, Direction direction, const std::string& text);
    void WritePacket(const Packet& packet);

    // The program's frames of one time: faults come after what they change.
    std::vector<Packet> sent_;
    // Faults of what reaches the unit come before it.
    std::vector<std::string> coming_;
};

}  // namespace unit
