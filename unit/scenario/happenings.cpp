#include "unit/scenario/happenings.h"

#include <algorithm>
#include <cstdio>

#include "platform/kernel/text.h"

namespace unit {
namespace {

std::string Hexadecimal(unsigned long long number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", number);
    return text;
}

std::string Told(const LineLogged& line) {
    return "log        " + line.text;
}

std::string Told(const BroadcastPosted& broadcast) {
    const std::string name = broadcast.name.empty() ? Hexadecimal(broadcast.message)
                                                    : platform::kernel::ToUtf8(broadcast.name);
    return "broadcast  " + name + " wparam " + std::to_string(broadcast.wparam) + " lparam " +
           std::to_string(broadcast.lparam);
}

std::string Told(const DriverCalled& call) {
    static constexpr const char* kVerbs[] = {"opened", "asked", "closed"};
    std::string text = "driver     " + platform::kernel::ToUtf8(call.driver) + " " +
                       kVerbs[static_cast<int>(call.call)];
    if (call.call == DriverCalled::Call::kControl)
        text += " code " + Hexadecimal(call.code);
    if (call.error != ERROR_SUCCESS)
        text += ", refused with error " + std::to_string(call.error);
    return text;
}

std::string Told(const LineEntry& entry) {
    return "line       " + entry.Text();
}

std::string Told(const FaultApplied& fault) {
    return "line fault " + fault.text;
}

}  // namespace

std::string TimedHappening::Text() const {
    char clock[24];
    std::snprintf(clock, sizeof clock, "%10.3f  ", static_cast<double>(time.count()) / 1e6);
    return clock + std::visit([](const auto& kind) { return Told(kind); }, happening);
}

Happenings::Happenings(EventHub& events) {
    subscription_ = events.Listen([this](const TimedEvent& event) { Note(event); });
}

void Happenings::Note(const TimedEvent& event) {
    const std::scoped_lock lock(mutex_);
    if (all_.size() >= kMost)
        return;
    if (const auto* const piece = std::get_if<LineBytes>(&event.event)) {
        for (LineEntry& entry : line_.Take(event.time, *piece))
            all_.push_back({event.time, std::move(entry)});
        return;
    }
    std::visit(
        [&](const auto& kind) {
            if constexpr (std::is_constructible_v<Happening, decltype(kind)>)
                all_.push_back({event.time, kind});
        },
        event.event);
}

std::size_t Happenings::Count() const {
    const std::scoped_lock lock(mutex_);
    return all_.size();
}

std::optional<std::size_t> Happenings::Find(
    std::size_t from, const std::function<bool(const Happening&)>& matches) const {
    const std::scoped_lock lock(mutex_);
    for (std::size_t index = from; index < all_.size(); ++index)
        if (matches(all_[index].happening))
            return index;
    return std::nullopt;
}

std::vector<std::string> Happenings::Latest(
    std::size_t most, const std::function<bool(const Happening&)>& matches) const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> lines;
    for (auto timed = all_.rbegin(); timed != all_.rend() && lines.size() < most; ++timed)
        if (matches(timed->happening))
            lines.push_back(timed->Text());
    std::ranges::reverse(lines);
    return lines;
}

}  // namespace unit
