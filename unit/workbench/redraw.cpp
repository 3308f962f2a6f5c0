#include "unit/workbench/redraw.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace unit {
namespace {

constexpr double kPictureInterval = 1.0 / 60;
constexpr double kNewsInterval = 1.0 / 20;
// For state that no event reports, such as the DVR's.
constexpr double kRefreshInterval = 0.5;
constexpr double kMaxIdle = 0.25;
constexpr int kFramesToSettle = 3;
constexpr double kRateSpan = 0.5;

}  // namespace

void RedrawSchedule::LetPanelSettle() {
    frames_to_settle_ = kFramesToSettle;
}

RedrawSchedule::Due RedrawSchedule::Next(double now, bool screen_outdated,
                                         const std::function<bool()>& read_news) {
    if (now < next_picture_)
        return {};
    if (now >= next_news_) {
        next_news_ = now + kNewsInterval;
        panel_outdated_ |= read_news() || now >= next_refresh_;
    }
    panel_outdated_ |= repaint_ || panel_settles();
    const bool panel = panel_outdated_;
    if (!panel && !repaint_ && !screen_outdated)
        return {};
    if (panel) {
        panel_outdated_ = false;
        frames_to_settle_ = std::max(0, frames_to_settle_ - 1);
        next_refresh_ = now + kRefreshInterval;
    }
    const bool all = std::exchange(repaint_, false);
    next_picture_ = std::max(next_picture_ + kPictureInterval, now);
    return {true, panel, all};
}

double RedrawSchedule::Idle(double now, bool screen_outdated) const {
    const bool waiting = repaint_ || panel_settles() || screen_outdated;
    return std::clamp(waiting ? next_picture_ - now : kMaxIdle, 0.0, kMaxIdle);
}

void PictureMeter::Count(double now, bool moving) {
    if (moving_) {
        const double gap = now - last_;
        ++pictures_;
        seconds_ += gap;
        longest_gap_ = std::max(longest_gap_, gap);
        ++recent_pictures_;
        recent_seconds_ += gap;
        if (recent_seconds_ >= kRateSpan) {
            rate_ = recent_pictures_ / recent_seconds_;
            recent_pictures_ = 0;
            recent_seconds_ = 0;
        }
    }
    moving_ = moving;
    last_ = now;
}

std::string PictureMeter::Summary() const {
    char text[128];
    std::snprintf(text, sizeof text, "%d pictures in %.1f s (%.1f per second, longest gap %.0f ms)",
                  pictures_, seconds_, seconds_ > 0 ? pictures_ / seconds_ : 0.0,
                  longest_gap_ * 1000);
    return text;
}

}  // namespace unit
