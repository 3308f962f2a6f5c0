#include "unit/recording/screen_judge.h"

#include <algorithm>

#include "unit/recording/moment_text.h"

namespace unit {

using std::chrono::microseconds;

ScreenJudge::ScreenJudge(const Recording& recording, Lateness& lateness)
    : allowance_(Allowance::Of(recording)), lateness_(lateness) {
    for (const RecordedMoment& recorded : recording.moments) {
        if (const auto* screen = std::get_if<SettledScreen>(&recorded.moment))
            screens_.push_back({recorded.time, {}, recorded.line, *screen});
        else if (const auto* unseen = std::get_if<ScreenUnseen>(&recorded.moment))
            unseen_.push_back({unseen->since, recorded.time});
    }
    for (std::size_t index = 0; index < screens_.size(); ++index) {
        const microseconds end =
            index + 1 < screens_.size() ? screens_[index + 1].time : recording.moments.back().time;
        screens_[index].stood = SeenBetween(screens_[index].time, end);
    }
}

microseconds ScreenJudge::SeenBetween(microseconds from, microseconds to) const {
    microseconds seen = to - from;
    auto unseen = std::ranges::lower_bound(unseen_, from, {}, &Unseen::to);
    for (; unseen != unseen_.end() && unseen->from < to; ++unseen)
        seen -= std::min(unseen->to, to) - std::max(unseen->from, from);
    return seen;
}

std::vector<std::size_t> ScreenJudge::CountBefore(const Recording& recording) {
    std::vector<std::size_t> counts;
    std::size_t count = 0;
    for (const RecordedMoment& recorded : recording.moments) {
        counts.push_back(count);
        count += std::holds_alternative<SettledScreen>(recorded.moment) ? 1 : 0;
    }
    return counts;
}

bool ScreenJudge::MayBeMissing(std::size_t index, const SettledScreen* next) const {
    const Recorded& recorded = screens_[index];
    // The first screen stands while the program loads, for however long.
    if (allowance_.Exact() || (index > 0 && recorded.stood > allowance_.work))
        return false;
    return std::ranges::all_of(recorded.screen.texts, [&](const std::string& text) {
        return seen_texts_.contains(text) ||
               (next && std::ranges::find(next->texts, text) != next->texts.end());
    });
}

std::size_t ScreenJudge::Awaited() const {
    std::size_t index = next_;
    while (index < screens_.size() && MayBeMissing(index, nullptr))
        ++index;
    return index;
}

std::optional<std::size_t> ScreenJudge::Find(const SettledScreen& screen) const {
    for (std::size_t index = next_; index < screens_.size(); ++index) {
        if (screens_[index].screen == screen)
            return index;
        if (!MayBeMissing(index, &screen))
            break;
    }
    return std::nullopt;
}

void ScreenJudge::Match(std::size_t index, microseconds time) {
    lateness_.Note(screens_[index].time, time);
    next_ = index + 1;
    ++count_;
    first_unknown_.reset();
}

void ScreenJudge::Take(microseconds time, const SettledScreen& screen) {
    if (!comparing_)
        return;
    shown_ = screen;
    unknown_since_.reset();
    const bool is_back = !allowance_.Exact() && next_ > 0 && screens_[next_ - 1].screen == screen;
    if (const auto index = is_back ? std::nullopt : Find(screen)) {
        Match(*index, time);
    } else if (!is_back) {
        unknown_since_ = time;
        if (!first_unknown_) {
            first_unknown_ = screen;
            first_unknown_since_ = time;
        }
        if (allowance_.Exact())
            Differ(next_, time);
    }
    seen_texts_.insert(screen.texts.begin(), screen.texts.end());
}

bool ScreenJudge::HasCome(std::size_t count, microseconds now) const {
    return !comparing_ || next_ >= count ||
           now - screens_[count - 1].time > kLatestOutput + lateness_.value();
}

void ScreenJudge::Check(microseconds now) {
    if (!comparing_)
        return;
    const microseconds late = lateness_.value();
    if (unknown_since_ && SeenBetween(*unknown_since_ - late, now - late) > allowance_.work) {
        Differ(next_, now);
        return;
    }
    const std::size_t awaited = Awaited();
    if (awaited < screens_.size() && now - screens_[awaited].time > kLatestOutput + late)
        Differ(awaited, now);
}

void ScreenJudge::CheckAtEnd(microseconds now) {
    const std::size_t awaited = Awaited();
    if (comparing_ && awaited < screens_.size())
        Differ(awaited, now);
}

void ScreenJudge::Differ(std::size_t recorded, microseconds time) {
    comparing_ = false;
    difference_ = Difference{"screen"};
    if (recorded < screens_.size()) {
        difference_->recorded = MomentText(screens_[recorded].screen);
        difference_->recorded_time = screens_[recorded].time;
        difference_->line = screens_[recorded].line;
    }
    difference_->came = MomentText(first_unknown_.value_or(shown_));
    difference_->time = first_unknown_ ? first_unknown_since_ : time;
}

}  // namespace unit
