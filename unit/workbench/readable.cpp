#include "unit/workbench/readable.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "platform/kernel/text.h"

namespace unit {
namespace {

// A part of a message's name, and the word for it.
struct Part {
    std::string_view in_name;
    const char* word;
};
constexpr Part kTopics[] = {
    {"PowerSuspend", "suspend"}, {"PowerResume", "resume"}, {"PowerOFF", "power off"}};
constexpr Part kKinds[] = {{"_Request_", " request"}, {"_Acknowledge_", " acknowledged"}};
constexpr std::string_view kPowerStatus = "PowerStatusChange";

template <std::size_t kCount>
std::string Find(const Part (&parts)[kCount], std::string_view name) {
    for (const Part& part : parts)
        if (name.find(part.in_name) != std::string_view::npos)
            return part.word;
    return {};
}

bool Contains(std::string_view text, std::string_view word) {
    const auto equal = [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left)) ==
               std::tolower(static_cast<unsigned char>(right));
    };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), equal) != text.end();
}

}  // namespace

std::string ReadableTime(std::chrono::microseconds time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", static_cast<double>(time.count()) / 1e6);
    return text;
}

std::string ReadablePowerName(std::string_view name) {
    const std::string topic = Find(kTopics, name);
    const std::string kind = Find(kKinds, name);
    return topic.empty() || kind.empty() ? std::string(name) : topic + kind;
}

std::string ReadableBroadcast(const BroadcastPosted& broadcast) {
    const std::string name = platform::kernel::ToUtf8(broadcast.name);
    if (name.find(kPowerStatus) != std::string::npos)
        return std::string("power status: external power ") +
               (broadcast.wparam == 0 ? "off" : "on") + ", battery flag " +
               std::to_string(broadcast.lparam);
    std::string readable = ReadablePowerName(name);
    if (readable != name)
        return readable;
    return (name.empty() ? "message " + std::to_string(broadcast.message) : name) + " (" +
           std::to_string(broadcast.wparam) + ", " + std::to_string(broadcast.lparam) + ")";
}

bool Matches(std::string_view text, std::string_view filter) {
    while (!filter.empty()) {
        const std::size_t end = std::min(filter.find(' '), filter.size());
        std::string_view word = filter.substr(0, end);
        filter.remove_prefix(std::min(end + 1, filter.size()));
        const bool wanted = !word.starts_with('-');
        if (!wanted)
            word.remove_prefix(1);
        if (!word.empty() && Contains(text, word) != wanted)
            return false;
    }
    return true;
}

}  // namespace unit
