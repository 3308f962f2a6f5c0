#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/wizard_model.h"

namespace tests::model {

// The events up to kNoise are bytes on the line.
enum class Kind {
    kRunning,
    kCard,
    kPercent,
    kImage,
    kVersion,
    kReport,  // any other
    kNoise,   // bytes that are no frame, or part of one
    kPress,   // a, b: x, y
    kRelease,
    kPost,    // a, b: a message that another application posts to the window, and its wParam
    kNotice,  // the same to the notice, if there is one
    kPower,   // a, b: wParam and lParam of the broadcast
    kSupply,  // a, b: AC line and battery flag; a over 255: cannot be read
    kPaint,   // the whole window is invalid
    kHold,    // a: the percent, without a painting
    kDriver,  // a: the driver, b: its error from now on
    kPass,    // only time passes
    kClose,   // a, b: the message that closes, and its wParam
    kCount
};

const char* NameOf(Kind kind);

struct Event {
    // Since the previous event; 0: 300 us.
    int milliseconds = 0;
    Kind kind = Kind::kPass;
    std::uint64_t a = 0, b = 0;
    Bytes bytes{};
};

// The events of one run of the wizard.
struct Sequence {
    World world;
    int start_milliseconds = 20000;
    std::vector<Event> events;
};
// One event a line.
std::string ToText(const Sequence& sequence);

}  // namespace tests::model
