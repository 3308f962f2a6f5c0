#include "unit/events/event_text.h"

#include <algorithm>
#include <cstdio>

#include "platform/kernel/text.h"
#include "unit/events/hex_text.h"

namespace unit {
namespace {

using platform::kernel::ToUtf8;
using platform::window::Touch;

constexpr std::size_t kKindWidth = 10;

struct Teller {
    using Told = std::optional<EventText>;

    Told operator()(const LineBytes&) const { return {}; }
    Told operator()(const BroadcastPosted& posted) const {
        const std::string name =
            posted.name.empty() ? "message " + std::to_string(posted.message) : ToUtf8(posted.name);
        return EventText{"broadcast", name + " wparam " + std::to_string(posted.wparam) +
                                          " lparam " + std::to_string(posted.lparam)};
    }
    Told operator()(const PowerRequested& request) const {
        return EventText{"request", ToUtf8(request.event_name)};
    }
    Told operator()(const LineLogged& line) const { return EventText{"log", line.text}; }
    Told operator()(const FingerMoved& finger) const {
        const char* const how = finger.touch == Touch::kDown ? "down "
                                : finger.touch == Touch::kUp ? "up "
                                                             : "move ";
        return EventText{"finger", how + std::to_string(finger.x) + " " + std::to_string(finger.y)};
    }
    Told operator()(const SupplyChanged& change) const {
        const platform::PowerSupply& supply = change.supply;
        return EventText{"power", std::string(supply.ac_line_status != 0 ? "on" : "off") +
                                      ", battery " + std::to_string(supply.battery_life_percent) +
                                      " % flag " + std::to_string(supply.battery_flag)};
    }
    Told operator()(const CardMoved& card) const {
        return EventText{"card", card.in ? "in " + card.folder : "out"};
    }
    Told operator()(const DriverCalled& called) const {
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
        return EventText{"driver", what};
    }
    Told operator()(const SuspendChanged& change) const {
        return EventText{"unit", change.suspended ? "suspended" : "awake"};
    }
    Told operator()(const FaultApplied& fault) const { return EventText{"fault", fault.text}; }
    Told operator()(const BoardFaultSwitched& fault) const {
        const bool hal = fault.fault == BoardFaultSwitched::Fault::kHalRefuses;
        return EventText{hal ? "HAL" : "battery driver",
                         fault.on ? (hal ? "refuses" : "fails") : "works"};
    }
    Told operator()(const ClockJumped& jump) const {
        return EventText{"clock",
                         "forward by " + std::to_string(jump.forward.count() / 1000) + " ms"};
    }
    Told operator()(const DvrReset&) const { return EventText{"DVR", "reset"}; }
    Told operator()(const OperatorMessage& told) const { return EventText{"operator", told.line}; }
    Told operator()(const ScreenDrawn&) const { return {}; }

    static std::string Hex(std::span<const std::byte> bytes) {
        return HexText({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    }
};

}  // namespace

std::optional<EventText> TextOf(const Event& event) {
    return std::visit(Teller(), event);
}

std::string UnitTimeText(std::chrono::microseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%10.3f", static_cast<double>(time.count()) / 1e6);
    return text;
}

std::string TimedLine(std::chrono::microseconds time, const EventText& event) {
    std::string kind = event.kind;
    kind.resize(std::max(kind.size(), kKindWidth), ' ');
    return UnitTimeText(time) + "  " + kind + " " + event.text;
}

}  // namespace unit
