#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "unit/events/event.h"

namespace unit {

// What a person reads of an event: of which kind it is ("card"), and what happened ("out").
struct EventText {
    std::string kind;
    std::string text;
};
// Nothing for bytes of the line, which are read as frames, and for pictures.
std::optional<EventText> TextOf(const Event& event);

// "    23.456", in seconds.
std::string UnitTimeText(std::chrono::microseconds time);
// All of it in one line: "    23.456  card       out".
std::string TimedLine(std::chrono::microseconds time, const EventText& event);

}  // namespace unit
