#include "unit/scenario/happenings.h"

#include <algorithm>

#include "unit/events/event_text.h"

namespace unit {

std::string TimedHappening::Text() const {
    if (const auto* const entry = std::get_if<LineEntry>(&happening))
        return TimedLine(time, {"frame", entry->Text()});
    return std::visit(
        [this](const auto& kind) {
            if constexpr (std::is_constructible_v<Event, decltype(kind)>)
                return TimedLine(time, TextOf(kind).value_or(EventText{}));
            else
                return std::string();
        },
        happening);
}

Happenings::Happenings(EventHub& events) {
    subscription_ = events.Subscribe([this](const TimedEvent& event) { Note(event); });
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
