#include "unit/recording/screen_comparison.h"

#include <algorithm>

#include "unit/events/event_text.h"

namespace unit {

using std::chrono::microseconds;

ScreenComparison::ScreenComparison(const Recording& recording, Lag& lag)
    : tolerance_(Tolerance::Of(recording)), lag_(lag) {
    for (const RecordedEvent& recorded : recording.events) {
        if (const auto* screen = std::get_if<ScreenSettled>(&recorded.event))
            screens_.push_back({recorded.time, {}, recorded.line, *screen});
        else if (const auto* unseen = std::get_if<ScreenUnseen>(&recorded.event))
            unseen_.push_back({unseen->since, recorded.time});
    }
    for (std::size_t index = 0; index < screens_.size(); ++index) {
        const microseconds end =
            index + 1 < screens_.size() ? screens_[index + 1].time : recording.events.back().time;
        screens_[index].shown_for = SeenBetween(screens_[index].time, end);
    }
}

microseconds ScreenComparison::SeenBetween(microseconds from, microseconds to) const {
    microseconds seen = to - from;
    auto unseen = std::ranges::lower_bound(unseen_, from, {}, &Unseen::to);
    for (; unseen != unseen_.end() && unseen->from < to; ++unseen)
        seen -= std::min(unseen->to, to) - std::max(unseen->from, from);
    return seen;
}

std::vector<std::size_t> ScreenComparison::CountBefore(const Recording& recording) {
    std::vector<std::size_t> counts;
    std::size_t count = 0;
    for (const RecordedEvent& recorded : recording.events) {
        counts.push_back(count);
        count += std::holds_alternative<ScreenSettled>(recorded.event) ? 1 : 0;
    }
    return counts;
}

bool ScreenComparison::MayBeMissing(std::size_t index, const ScreenSettled* next) const {
    const Recorded& recorded = screens_[index];
    if (tolerance_.Exact())
        return false;
    // The first screen is shown while the program loads, and one without texts until the program
    // paints it: for however long.
    if (index > 0 && !recorded.screen.texts.empty() && recorded.shown_for > tolerance_.work)
        return false;
    // When a slow host delivers several reports at once, the replay paints only the last one.
    if (recorded.shown_for <= tolerance_.jitter)
        return true;
    return std::ranges::all_of(recorded.screen.texts, [&](const std::string& text) {
        return seen_texts_.contains(text) ||
               (next && std::ranges::find(next->texts, text) != next->texts.end());
    });
}

std::size_t ScreenComparison::FirstExpected() const {
    std::size_t index = next_;
    while (index < screens_.size() && MayBeMissing(index, nullptr))
        ++index;
    return index;
}

std::optional<std::size_t> ScreenComparison::Find(const ScreenSettled& screen) const {
    for (std::size_t index = next_; index < screens_.size(); ++index) {
        if (screens_[index].screen == screen)
            return index;
        if (!MayBeMissing(index, &screen))
            break;
    }
    return std::nullopt;
}

void ScreenComparison::Match(std::size_t index, microseconds time) {
    lag_.Note(screens_[index].time, time);
    next_ = index + 1;
    ++count_;
    first_unknown_.reset();
}

void ScreenComparison::Compare(microseconds time, const ScreenSettled& screen) {
    if (!comparing_)
        return;
    shown_ = screen;
    unknown_since_.reset();
    const bool is_back = !tolerance_.Exact() && next_ > 0 && screens_[next_ - 1].screen == screen;
    if (const auto index = is_back ? std::nullopt : Find(screen)) {
        Match(*index, time);
    } else if (!is_back) {
        unknown_since_ = time;
        if (!first_unknown_) {
            first_unknown_ = screen;
            first_unknown_since_ = time;
        }
        if (tolerance_.Exact())
            Differ(next_, time);
    }
    seen_texts_.insert(screen.texts.begin(), screen.texts.end());
}

bool ScreenComparison::HaveCome(std::size_t count, microseconds now) const {
    return !comparing_ || next_ >= count ||
           now - screens_[count - 1].time > kLatestOutput + lag_.value();
}

void ScreenComparison::Check(microseconds now) {
    if (!comparing_)
        return;
    const microseconds lag = lag_.value();
    if (unknown_since_ && SeenBetween(*unknown_since_ - lag, now - lag) > tolerance_.work) {
        Differ(next_, now);
        return;
    }
    const std::size_t expected = FirstExpected();
    if (expected < screens_.size() && now - screens_[expected].time > kLatestOutput + lag)
        Differ(expected, now);
}

void ScreenComparison::CheckAtEnd(microseconds now) {
    const std::size_t expected = FirstExpected();
    if (comparing_ && expected < screens_.size())
        Differ(expected, now);
}

void ScreenComparison::Differ(std::size_t recorded, microseconds time) {
    comparing_ = false;
    difference_ = Difference{"screen"};
    if (recorded < screens_.size()) {
        difference_->recorded = EventLine(screens_[recorded].screen);
        difference_->recorded_time = screens_[recorded].time;
        difference_->line = screens_[recorded].line;
    }
    difference_->replayed = EventLine(first_unknown_.value_or(shown_));
    difference_->time = first_unknown_ ? first_unknown_since_ : time;
}

}  // namespace unit
