#include "unit/workbench/picture_meter.h"

#include <algorithm>
#include <cstdio>

namespace unit {
namespace {

constexpr double kRateSpan = 0.5;

}  // namespace

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
    std::snprintf(text, sizeof text, "%d pictures in %.1f s (%.1f a second, longest gap %.0f ms)",
                  pictures_, seconds_, seconds_ > 0 ? pictures_ / seconds_ : 0.0,
                  longest_gap_ * 1000);
    return text;
}

}  // namespace unit
