#include "unit/recording/replay_inputs.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace unit {

namespace kernel = platform::kernel;

namespace {

// How often to check whether the output that an input waits for has come. The first time is as
// short as possible: the program's threads may simply not have run yet.
constexpr kernel::Duration kFirstCheck = std::chrono::microseconds(1);
constexpr kernel::Duration kCheck = std::chrono::milliseconds(1);

void Raise(PowerCoordinator& coordinator, const std::wstring& event) {
    const std::span<const PowerRequest> known = PowerRequests();
    const auto request = std::ranges::find(known, event, &PowerRequest::event);
    if (request != known.end())
        coordinator.Raise(*request);
}

}  // namespace

ReplayInputs::ReplayInputs(const Recording& recording, Parts parts, std::function<void()> at_end)
    : parts_(parts), at_end_(std::move(at_end)) {
    const std::vector<std::size_t> outputs = ExpectedOutput::CountBefore(recording);
    const std::vector<std::size_t> screens = ScreenComparison::CountBefore(recording);
    for (std::size_t index = 0; index < recording.events.size(); ++index) {
        const RecordedEvent& recorded = recording.events[index];
        Add({recorded.time, outputs[index], 0, {}}, recorded.event);
        if (std::holds_alternative<FingerMoved>(recorded.event))
            inputs_.back().screens_before = screens[index];
        const bool ends = std::holds_alternative<ClosingBegan>(recorded.event) ||
                          std::holds_alternative<EventsLost>(recorded.event) ||
                          std::holds_alternative<RecordingEnded>(recorded.event);
        if (ends || index + 1 == recording.events.size()) {
            inputs_.push_back({recorded.time, outputs[index], 0, at_end_});
            break;
        }
    }
    if (!inputs_.empty())
        FeedLater(inputs_.front().time);
}

ReplayInputs::~ReplayInputs() {
    kernel::Cancel(next_feed_);
}

void ReplayInputs::Add(const Input& when, const Event& event) {
    const auto add = [&](std::chrono::microseconds after, std::function<void()> feed) {
        inputs_.push_back({when.time + after, when.outputs_before, 0, std::move(feed)});
    };
    const auto visit = [&]<class Kind>(const Kind& input) {
        VirtualUnit& unit = parts_.unit;
        if constexpr (std::is_same_v<Kind, LineBytes>) {
            if (input.direction == Direction::kToUnit)
                input.ForEachChunk([&](auto after, std::span<const std::uint8_t> bytes) {
                    add(after, [this, bytes] { parts_.line.Deliver(bytes); });
                });
        } else if constexpr (std::is_same_v<Kind, FingerMoved>) {
            add({}, [&] { unit.Touch(input.touch, input.x, input.y); });
        } else if constexpr (std::is_same_v<Kind, SupplyChanged>) {
            add({}, [&] { unit.SetSupply(input.supply); });
        } else if constexpr (std::is_same_v<Kind, UnitWoken>) {
            add({}, [&] { unit.WakeUp(); });
        } else if constexpr (std::is_same_v<Kind, HalSwitched>) {
            add({}, [&] { unit.faults().SetHalRefuses(input.refuses); });
        } else if constexpr (std::is_same_v<Kind, BatteryDriverSwitched>) {
            add({}, [&] { unit.faults().SetBatteryDriverFails(input.fails); });
        } else if constexpr (std::is_same_v<Kind, ClockJumped>) {
            add({}, [&] { unit.JumpClock(input.forward); });
        } else if constexpr (std::is_same_v<Kind, PowerRequested>) {
            add({}, [&] { Raise(unit.power_coordinator(), input.event_name); });
        }
    };
    std::visit(visit, event);
}

bool ReplayInputs::IsReady(const Input& input) const {
    return parts_.expected.HaveCome(input.outputs_before) &&
           parts_.screens.HaveCome(input.screens_before, kernel::Now());
}

void ReplayInputs::FeedLater(kernel::Time when) {
    next_feed_ = kernel::At(when, [this] { Feed(); });
}

void ReplayInputs::Feed() {
    while (next_ < inputs_.size()) {
        const Input& input = inputs_[next_];
        const auto due = input.time + parts_.lag.value();
        if (kernel::Now() < due) {
            FeedLater(due);
            return;
        }
        if (!IsReady(input)) {
            FeedLater(kernel::Now() + (std::exchange(waited_, true) ? kCheck : kFirstCheck));
            return;
        }
        waited_ = false;
        ++next_;
        input.feed();
    }
}

}  // namespace unit
