#include "tests/model/event.h"

#include <algorithm>
#include <sstream>

#include "tests/model/text.h"

namespace tests::model {
namespace {

constexpr const char* kNames[] = {
    "running",      "card",  "percent", "image",   "version",        "report",
    "noise",        "press", "release", "command", "timer",          "power",
    "supply",       "paint", "hold",    "driver",  "notice-command", "notice-timer",
    "notice-close", "menu",  "pass",    "close"};
static_assert(std::size(kNames) == static_cast<std::size_t>(Kind::kCount));

std::string Hex(const Bytes& bytes) {
    std::string text;
    for (const unsigned byte : bytes)
        text += Text("%02X", byte);
    return text;
}

}  // namespace

const char* NameOf(Kind kind) {
    return kNames[static_cast<std::size_t>(kind)];
}

std::string ToText(const Sequence& sequence) {
    std::string text = Text("start %d ac %d link %d\n", sequence.start_milliseconds,
                            sequence.world.ac_line, sequence.world.has_link ? 1 : 0);
    for (const Event& event : sequence.events) {
        text += Text("%d %s", event.milliseconds, NameOf(event.kind));
        if (!event.bytes.empty())
            text += " " + Hex(event.bytes);
        else if (event.a != 0 || event.b != 0)
            text += Text(" %llu %llu", static_cast<unsigned long long>(event.a),
                         static_cast<unsigned long long>(event.b));
        text += "\n";
    }
    return text;
}

bool FromText(const std::string& text, Sequence& sequence, std::string& problem) {
    std::istringstream lines(text);
    std::string line;
    sequence = {};
    for (int number = 1; std::getline(lines, line); ++number) {
        std::istringstream words(line);
        std::string first;
        std::string word;
        if (!(words >> first))
            continue;
        const auto refuse = [&](const std::string& what) {
            problem = Text("line %d: ", number) + what;
            return false;
        };
        if (first == "start") {
            std::string ac;
            std::string link;
            unsigned ac_line = 0;
            if (!(words >> sequence.start_milliseconds >> ac >> ac_line >> link >>
                  sequence.world.has_link) ||
                ac != "ac" || link != "link")
                return refuse("'start MILLISECONDS ac STATUS link 0|1' is allowed");
            sequence.world.ac_line = static_cast<std::uint8_t>(ac_line);
            continue;
        }
        Event event;
        event.milliseconds = std::atoi(first.c_str());
        words >> word;
        const auto name = std::ranges::find(kNames, word);
        if (name == std::end(kNames))
            return refuse("unknown event '" + word + "'");
        event.kind = static_cast<Kind>(name - kNames);
        if (event.kind <= Kind::kNoise) {
            words >> word;
            for (std::size_t at = 0; at + 1 < word.size(); at += 2)
                event.bytes.push_back(
                    static_cast<std::uint8_t>(std::stoul(word.substr(at, 2), nullptr, 16)));
        } else {
            words >> event.a >> event.b;
        }
        sequence.events.push_back(std::move(event));
    }
    return true;
}

}  // namespace tests::model
