#include "tests/model/event.h"

#include <iterator>

#include "tests/model/text.h"

namespace tests::model {

const char* NameOf(Kind kind) {
    constexpr const char* kNames[] = {"running", "card",  "percent", "image",  "version", "report",
                                      "noise",   "press", "release", "post",   "notice",  "power",
                                      "supply",  "paint", "hold",    "driver", "pass",    "close"};
    static_assert(std::size(kNames) == static_cast<std::size_t>(Kind::kCount));
    return kNames[static_cast<std::size_t>(kind)];
}

std::string ToText(const Sequence& sequence) {
    std::string text = Text("start %d ac %d link %d\n", sequence.start_milliseconds,
                            sequence.world.ac_line, sequence.world.has_link ? 1 : 0);
    for (const Event& event : sequence.events) {
        text += Text("%d %s %llu %llu ", event.milliseconds, NameOf(event.kind),
                     static_cast<unsigned long long>(event.a),
                     static_cast<unsigned long long>(event.b));
        for (const unsigned byte : event.bytes)
            text += Text("%02X", byte);
        text += "\n";
    }
    return text;
}

}  // namespace tests::model
