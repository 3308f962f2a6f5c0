#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/model/wizard_model.h"

namespace tests::model {

enum class Kind {
    kBytes,  // on the line
    kPress,  // a, b: x, y
    kRelease,
    kPost,    // a, b: a message that another application posts to the window, and its wParam
    kNotice,  // the same to the notice, if there is one
    kPower,   // a, b: wParam and lParam of the broadcast
    kSupply,  // a, b: AC line and battery flag; a over 255: cannot be read
    kPaint,   // the whole window is invalid
    kHold,    // a: the percent, without a painting
    kDriver,  // a, b: one of the world's answers, and the error from now on
    kPass,    // only time passes
};

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
inline std::string ToText(const Sequence& sequence) {
    constexpr const char* kNames[] = {"bytes",  "press", "release", "post",   "notice", "power",
                                      "supply", "paint", "hold",    "driver", "pass"};
    std::string text = Text("start %d ac %d link %d\n", sequence.start_milliseconds,
                            sequence.world.ac_line, sequence.world.has_link ? 1 : 0);
    for (const auto& [milliseconds, kind, a, b, bytes] : sequence.events) {
        text += Text("%d %s %ju %ju ", milliseconds, kNames[static_cast<std::size_t>(kind)],
                     std::uintmax_t{a}, std::uintmax_t{b});
        for (const unsigned byte : bytes)
            text += Text("%02X", byte);
        text += "\n";
    }
    return text;
}

}  // namespace tests::model
