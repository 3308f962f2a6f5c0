#include "unit/video/video_recorder.h"

#include <utility>

#include "platform/kernel/scheduler.h"
#include "platform/window/screen.h"
#include "unit/video/finger_mark.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

constexpr int kPicturesPerSecond = 20;
// How many pictures show a tap at least, and the end of the run.
constexpr int kTapPictures = 8;
constexpr int kLastPictures = kPicturesPerSecond;
// A host that is later than this, or a clock that jumps, leaves a gap.
constexpr int kMostLatePictures = 5 * kPicturesPerSecond;

}  // namespace

bool VideoRecorder::Open(const std::string& file, double speed, std::string& problem) {
    interval_ =
        kernel::Duration(static_cast<kernel::Duration::rep>(speed * 1e6 / kPicturesPerSecond));
    open_ = encoder_.Start(file, platform::window::kScreenWidth, platform::window::kScreenHeight,
                           kPicturesPerSecond, problem);
    return open_;
}

void VideoRecorder::Begin(VirtualUnit& unit) {
    if (!open_)
        return;
    unit_ = &unit;
    next_ = kernel::Now();
    subscription_ = unit.events().Subscribe([this](const TimedEvent& event) { Note(event); });
    next_action_ = kernel::At(next_, [this] { TakePictures(); });
}

bool VideoRecorder::Finish() {
    if (unit_)
        Write(kLastPictures);
    std::string problem;
    if (unit_ && !failed_ && !encoder_.Finish(problem))
        Fail(problem);
    Stop();
    return !failed_;
}

void VideoRecorder::Stop() {
    if (!unit_)
        return;
    kernel::Cancel(next_action_);
    subscription_ = {};
    unit_ = nullptr;
}

void VideoRecorder::Fail(const std::string& problem) {
    failed_ = true;
    unit_->Say(problem);
}

void VideoRecorder::Note(const TimedEvent& event) {
    const auto* const moved = std::get_if<FingerMoved>(&event.event);
    if (!moved)
        return;
    const std::scoped_lock lock(mutex_);
    finger_ = {moved->touch != platform::window::Touch::kUp, moved->x, moved->y, event.time};
}

bool VideoRecorder::ShowsFinger(const Finger& finger) const {
    return finger.down ||
           (finger.time.count() > 0 && kernel::Now() - finger.time < kTapPictures * interval_);
}

void VideoRecorder::TakePictures() {
    picture_ = unit_->TakePicture(std::move(picture_));
    Finger finger;
    {
        const std::scoped_lock lock(mutex_);
        finger = finger_;
    }
    if (ShowsFinger(finger))
        DrawFingerMark(picture_, finger.x, finger.y);
    const auto late = (kernel::Now() - next_) / interval_;
    if (late > kMostLatePictures)
        next_ = kernel::Now();
    const int count = late > kMostLatePictures ? 1 : static_cast<int>(late) + 1;
    next_ += count * interval_;
    Write(count);
    if (!failed_)
        next_action_ = kernel::At(next_, [this] { TakePictures(); });
}

void VideoRecorder::Write(int count) {
    std::string problem;
    for (int number = 0; number < count && !failed_ && !picture_.pixels.empty(); ++number)
        if (!encoder_.Write(picture_, problem))
            Fail(problem);
}

}  // namespace unit
