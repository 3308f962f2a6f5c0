#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/wizard_model.h"

namespace tests::model {

// The first ones come over the line, as bytes.
enum class Kind {
    kRunning,
    kCard,
    kPercent,
    kImage,
    kVersion,
    kReport,  // any other
    kNoise,   // what is no frame, or only a part of one
    kPress,   // a, b: x, y
    kRelease,
    kCommand,        // a: the id, as another application sends it
    kTimer,          // a: the id, likewise
    kPower,          // a, b: wParam and lParam, likewise
    kSupply,         // a, b: AC line and battery flag; a over 255: cannot be read
    kPaint,          // the whole window is invalid
    kHold,           // a: the percent, of which the window has not been told yet
    kDriver,         // a: which, b: its error from now on
    kNoticeCommand,  // a: the id; for the notice, if there is one
    kNoticeTimer,
    kNoticeClose,
    kMenu,  // WM_COMMAND; a: the id
    kPass,  // nothing but time
    kClose,
    kCount
};

const char* NameOf(Kind kind);

struct Event {
    // Since the event before; 0: hardly any.
    int milliseconds = 0;
    Kind kind = Kind::kPass;
    std::uint64_t a = 0, b = 0;
    Bytes bytes;
};

// A run of the wizard as text, an event a line, and back.
struct Sequence {
    World world;
    int start_milliseconds = 20000;
    std::vector<Event> events;
};
std::string ToText(const Sequence& sequence);
// False, with `problem` set, for a text that is none.
bool FromText(const std::string& text, Sequence& sequence, std::string& problem);

}  // namespace tests::model
