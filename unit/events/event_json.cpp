#include "unit/events/event_json.h"

#include <nlohmann/json.hpp>

#include "platform/kernel/text.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

// Keeps the order of the members.
using Json = nlohmann::ordered_json;

void Add(Json& object, const LineEntry& entry) {
    object["direction"] = entry.direction == Direction::kToUnit ? "to-unit" : "to-dvr";
    if (entry.kind == Segment::Kind::kStray) {
        object["bytes"] = HexText(entry.bytes);
        return;
    }
    object["type"] = FrameTypeName(entry.type());
    object["command"] = CodeName(entry.command());
    object["query"] = entry.query();
    object["payload"] = HexText(entry.payload());
    object["checksum_good"] = entry.checksum_good();
}

void Add(Json& object, const BroadcastPosted& broadcast) {
    object["name"] = platform::kernel::ToUtf8(broadcast.name);
    object["wparam"] = broadcast.wparam;
    object["lparam"] = broadcast.lparam;
}

void Add(Json& object, const LineLogged& line) {
    object["line"] = line.text;
}

template <class Kind>
void Add(Json&, const Kind&) {}

}  // namespace

std::string EventJson(const TimedEvent& timed) {
    EventText text = TextOf(timed.event);
    Json object = {{"time", static_cast<double>(timed.time.count()) / 1e6},
                   {"kind", text.kind},
                   {"text", std::move(text.details)}};
    std::visit([&](const auto& event) { Add(object, event); }, timed.event);
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace unit
