#pragma once

#include <functional>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "unit/board/virtual_unit.h"
#include "unit/recording/output_book.h"
#include "unit/recording/replay_devices.h"
#include "unit/recording/screen_judge.h"

namespace unit {

// Gives the program what it was given in the recording: each input at its time, but not before all
// outputs recorded before it have come, and a touch not before the screens. Hardware's thread.
class ReplayInputs {
  public:
    struct Parts {
        VirtualUnit& unit;
        ReplayLine& line;
        const OutputBook& book;
        const ScreenJudge& judge;
        const Lateness& lateness;
    };

    // `at_end` is called when the recording has no more inputs: where the unit began to close the
    // program, at the end, or where events are missing.
    ReplayInputs(const Recording& recording, Parts parts, std::function<void()> at_end);
    ~ReplayInputs();
    ReplayInputs(const ReplayInputs&) = delete;
    ReplayInputs& operator=(const ReplayInputs&) = delete;

  private:
    struct Input {
        std::chrono::microseconds time;
        std::size_t outputs_before;
        std::size_t screens_before;
        std::function<void()> feed;
    };

    void Add(const Input& when, const Moment& moment);
    void Feed();
    void FeedLater(platform::kernel::Time when);
    bool IsReady(const Input& input) const;

    const Parts parts_;
    const std::function<void()> at_end_;
    std::vector<Input> inputs_;
    std::size_t next_ = 0;
    bool waited_ = false;
    platform::kernel::EventId alarm_ = 0;
};

}  // namespace unit
