#include "unitctl/paint.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string_view>

#include "control/terminal.h"

namespace unitctl {
namespace {

using control::Tone;

// The kinds of trace records that stand out.
struct Kind {
    std::string_view word;
    Tone tone;
};

constexpr Kind kKinds[] = {
    {"frame", Tone::kFrame},          {"broadcast", Tone::kBroadcast},
    {"request", Tone::kBroadcast},    {"operator", Tone::kNotice},
    {"finger", Tone::kInput},         {"supply", Tone::kInput},
    {"card", Tone::kInput},           {"dvr", Tone::kInput},
    {"line-fault", Tone::kFault},     {"hal", Tone::kFault},
    {"battery-driver", Tone::kFault}, {"failed-call", Tone::kFault},
    {"lost", Tone::kFailed},
};

std::string Paint(const std::string& line, std::size_t begin, std::size_t size, Tone tone) {
    return line.substr(0, begin) + control::Coloured(tone, line.substr(begin, size), stdout) +
           line.substr(begin + size);
}

// "    23.456  card       in /cards/new"
std::string PaintRecord(const std::string& line) {
    const std::size_t begin = line.find_first_not_of("0123456789. ");
    if (begin == std::string::npos)
        return line;
    const std::size_t size = std::min(line.find(' ', begin), line.size()) - begin;
    const auto* const kind =
        std::ranges::find(kKinds, std::string_view(line).substr(begin, size), &Kind::word);
    return kind == std::end(kKinds) ? line : Paint(line, begin, size, kind->tone);
}

// "> card in", and at the end "NAME: passed, 12.3 s of unit time".
std::string PaintRun(const std::string& line) {
    if (line.starts_with("> "))
        return Paint(line, 0, line.size(), Tone::kCommand);
    constexpr std::string_view kPassed = "passed";
    const std::size_t verdict = line.rfind(": passed, ");
    return verdict == std::string::npos || !line.ends_with(" of unit time")
               ? line
               : Paint(line, verdict + 2, kPassed.size(), Tone::kPassed);
}

}  // namespace

std::function<std::string(const std::string&)> PaintFor(const std::string& command) {
    if (command == "watch")
        return PaintRecord;
    return command == "run" ? PaintRun : std::function<std::string(const std::string&)>();
}

}  // namespace unitctl
