#pragma once

#include <mutex>
#include <string>

#include "platform/kernel/scheduler.h"
#include "unit/board/virtual_unit.h"
#include "unit/video/video_encoder.h"

namespace unit {

// Records what a unit's screen shows as a video, with a mark where the finger is. Host thread.
class VideoRecorder {
  public:
    VideoRecorder() = default;
    // Removes the file, unless Finish has succeeded.
    ~VideoRecorder() { Stop(); }
    VideoRecorder(const VideoRecorder&) = delete;
    VideoRecorder& operator=(const VideoRecorder&) = delete;

    // Opens the file of a video that plays `speed` times as fast as the unit's time. False, with
    // one line in `problem`, when that fails.
    bool Open(const std::string& file, double speed, std::string& problem);

    // Begins to record; nothing without an open file. Before VirtualUnit::Start. If writing fails
    // later, the unit says so and the run continues.
    void Begin(VirtualUnit& unit);

    // Completes the file, before the unit is destroyed. False when the file is not complete.
    bool Finish();

  private:
    struct Finger {
        bool down = false;
        int x = 0;
        int y = 0;
        platform::kernel::Time time{};  // of its last movement
    };

    void Stop();
    void Fail(const std::string& problem);
    void Note(const TimedEvent& event);
    void TakePictures();
    bool ShowsFinger(const Finger& finger) const;
    void Write(int count);

    VirtualUnit* unit_ = nullptr;  // while it records
    VideoEncoder encoder_;
    bool open_ = false;
    bool failed_ = false;
    Picture picture_;
    platform::kernel::Duration interval_{};
    // When the next picture is taken.
    platform::kernel::Time next_{};
    platform::kernel::EventId next_action_ = 0;
    std::mutex mutex_;  // of the finger
    Finger finger_;
    EventHub::Subscription subscription_;
};

}  // namespace unit
