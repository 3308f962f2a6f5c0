#pragma once

#include <functional>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "unit/board/virtual_unit.h"
#include "unit/recording/expected_output.h"
#include "unit/recording/replay_devices.h"
#include "unit/recording/screen_comparison.h"

namespace unit {

// Gives the program the inputs of the recording: each at its time, but not before all outputs that
// were recorded before it, and a touch not before the screens. Host thread.
class ReplayInputs {
  public:
    struct Parts {
        VirtualUnit& unit;
        ReplayLine& line;
        const ExpectedOutput& expected;
        const ScreenComparison& screens;
        const Lag& lag;
    };

    // `at_end` is called when the recording has no more inputs: where the unit began to close the
    // program, where events are missing, or at the end.
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

    void Add(const Input& when, const Event& event);
    void Feed();
    void FeedLater(platform::kernel::Time when);
    bool IsReady(const Input& input) const;

    const Parts parts_;
    const std::function<void()> at_end_;
    std::vector<Input> inputs_;
    std::size_t next_ = 0;
    bool waited_ = false;
    platform::kernel::EventId next_feed_ = 0;
};

}  // namespace unit
