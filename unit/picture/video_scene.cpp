#include "unit/picture/video_scene.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "unit/picture/backdrop.h"
#include "unit/picture/calendar.h"
#include "unit/picture/road.h"

namespace unit {
namespace {

constexpr int kFieldsASecond = 60;
constexpr double kSpeedPerField = 0.06;
// Inside the part of the video that a scaler shows on the whole screen, and clear of the wizard's
// texts and buttons there.
constexpr int kCaptionX = 30;
constexpr int kCaptionY = 394;

std::string CaptionText(std::chrono::microseconds time, std::int64_t field) {
    char text[64];
    std::snprintf(text, sizeof text, "%s %s  %06lld", CarDate(time).c_str(), CarTime(time).c_str(),
                  static_cast<long long>(field / 2 % 1'000'000));
    return text;
}

// Drawn when it is first seen; a picture begins as a copy of it.
const Picture& Backdrop() {
    static const Picture drawn = [] {
        Picture picture = NoSignal();
        DrawBackdrop(picture);
        return picture;
    }();
    return drawn;
}

}  // namespace

VideoScene::VideoScene() : picture_(NoSignal()) {}

const Picture& VideoScene::At(std::chrono::microseconds time) {
    const std::int64_t field = time.count() * kFieldsASecond / 1'000'000;
    if (field == field_)
        return picture_;
    field_ = field;
    std::copy_n(Backdrop().pixels.begin(), kHorizon * kVideoWidth, picture_.pixels.begin());
    DrawRoad(picture_, static_cast<double>(field) * kSpeedPerField);
    caption_.Draw(picture_, kCaptionX, kCaptionY, CaptionText(time, field));
    return picture_;
}

const Picture& NoSignal() {
    static const Picture black{
        kVideoWidth, kVideoHeight,
        std::vector<std::uint32_t>(static_cast<std::size_t>(kVideoWidth) * kVideoHeight, 0)};
    return black;
}

}  // namespace unit
