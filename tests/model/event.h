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
    kPost,    // a, b: a message of another application to the window, and its wParam
    kNotice,  // likewise to the notice, if there is one
    kPower,   // a, b: wParam and lParam of the broadcast
    kSupply,  // a, b: AC line and battery flag; a over 255: cannot be read
    kPaint,   // the whole window is invalid
    kHold,    // a: the percent, of which the window has not been told yet
    kDriver,  // a: which, b: its error from now on
    kPass,    // nothing but time
    kClose,   // a, b: the message that closes, and its wParam
    kCount
};

const char* NameOf(Kind kind);

struct Event {
    // Since the event before; 0: hardly any.
    int milliseconds = 0;
    Kind kind = Kind::kPass;
    std::uint64_t a = 0, b = 0;
    Bytes bytes{};
};

// A run of the wizard.
struct Sequence {
    World world;
    int start_milliseconds = 20000;
    std::vector<Event> events;
};
// An event a line.
std::string ToText(const Sequence& sequence);

}  // namespace tests::model
