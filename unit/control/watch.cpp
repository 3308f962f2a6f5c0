#include "unit/control/watch.h"

#include <cstdio>

#include "platform/kernel/text.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

using platform::kernel::ToUtf8;
using platform::window::Touch;

// What a person reads of one event; no text for what is not to be told.
struct Report {
    const WatchedKinds& wanted;
    std::string kind = {};
    std::string text = {};

    void Tell(bool asked_for, const char* what, std::string said) {
        if (!asked_for)
            return;
        kind = what;
        text = std::move(said);
    }

    void operator()(const LineBytes&) {}
    void operator()(const BroadcastPosted& posted) {
        const std::string name =
            posted.name.empty() ? "message " + std::to_string(posted.message) : ToUtf8(posted.name);
        Tell(wanted.broadcasts, "broadcast",
             name + " " + std::to_string(posted.wparam) + " " + std::to_string(posted.lparam));
    }
    void operator()(const PowerRequested& request) {
        Tell(wanted.broadcasts, "request", ToUtf8(request.event_name));
    }
    void operator()(const LineLogged& line) { Tell(wanted.log, "log", line.text); }
    void operator()(const FingerMoved& finger) {
        const char* const how = finger.touch == Touch::kDown ? "down "
                                : finger.touch == Touch::kUp ? "up "
                                                             : "move ";
        Tell(wanted.rest, "finger",
             how + std::to_string(finger.x) + " " + std::to_string(finger.y));
    }
    void operator()(const SupplyChanged& change) {
        const platform::PowerSupply& supply = change.supply;
        Tell(wanted.rest, "power",
             std::string(supply.ac_line_status != 0 ? "on" : "off") + ", battery " +
                 std::to_string(supply.battery_life_percent) + " % flag " +
                 std::to_string(supply.battery_flag));
    }
    void operator()(const CardMoved& card) {
        Tell(wanted.rest, "card", card.in ? "in " + card.folder : "out");
    }
    void operator()(const DriverCalled& called) {
        std::string what = ToUtf8(called.driver);
        if (called.call == DriverCalled::Call::kControl) {
            char code[16];
            std::snprintf(code, sizeof code, " 0x%04X", static_cast<unsigned>(called.code));
            what += code + (called.input.empty() ? "" : " " + Hex(called.input));
        } else {
            what += called.call == DriverCalled::Call::kOpen ? " opened" : " closed";
        }
        if (called.error != ERROR_SUCCESS)
            what += ", error " + std::to_string(called.error);
        Tell(wanted.rest, "driver", what);
    }
    void operator()(const SuspendChanged& change) {
        Tell(wanted.rest, "unit", change.suspended ? "suspended" : "awake");
    }
    void operator()(const FaultApplied& fault) { Tell(wanted.frames, "fault", fault.text); }
    void operator()(const BoardFaultSwitched& fault) {
        const bool hal = fault.fault == BoardFaultSwitched::Fault::kHalRefuses;
        Tell(wanted.rest, hal ? "HAL" : "battery driver",
             fault.on ? (hal ? "refuses" : "fails") : "works");
    }
    void operator()(const ClockJumped& jump) {
        Tell(wanted.rest, "clock",
             "forward by " + std::to_string(jump.forward.count() / 1000) + " ms");
    }
    void operator()(const DvrReset&) { Tell(wanted.rest, "DVR", "reset"); }
    void operator()(const OperatorTold& told) { Tell(wanted.rest, "operator", told.line); }
    void operator()(const ScreenDrawn&) {}

    static std::string Hex(std::span<const std::byte> bytes) {
        return HexText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    }
};

}  // namespace

std::string UnitTimeText(std::chrono::microseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%10.3f", static_cast<double>(time.count()) / 1e6);
    return text;
}

Watch::Watch(EventHub& events, WatchedKinds kinds, std::function<void(const std::string&)> tell)
    : kinds_(kinds),
      tell_(std::move(tell)),
      subscription_(events.Listen([this](const TimedEvent& timed) { Hear(timed); })) {}

void Watch::Hear(const TimedEvent& timed) {
    if (const auto* const piece = std::get_if<LineBytes>(&timed.event))
        return HearLine(timed.time, *piece);
    Report report{kinds_};
    std::visit(report, timed.event);
    if (!report.kind.empty())
        Tell(timed.time, report.kind, report.text);
}

void Watch::HearLine(std::chrono::microseconds time, const LineBytes& piece) {
    if (!kinds_.frames)
        return;
    for (const LineEntry& entry : line_.Take(time, piece))
        Tell(entry.time, "frame", entry.Text());
}

void Watch::Tell(std::chrono::microseconds time, std::string kind, const std::string& text) {
    kind.resize(9, ' ');
    tell_(UnitTimeText(time) + "  " + kind + "  " + text);
}

}  // namespace unit
