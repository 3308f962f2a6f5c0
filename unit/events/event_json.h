#pragma once

#include <string>

#include "unit/events/event.h"

namespace unit {

// An event as a JSON object in one line, for scripts: its time in seconds, the kind and the text
// that `unitctl watch` prints, and the parts of a frame, a broadcast and a line of debug output.
std::string EventJson(const TimedEvent& timed);

}  // namespace unit
