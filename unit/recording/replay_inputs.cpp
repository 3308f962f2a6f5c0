#include "unit/recording/replay_inputs.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace unit {

namespace kernel = platform::kernel;

namespace {

// Between two looks for an output that an input waits for; the first is as short as can be, as the
// program's threads may just not have had their turn.
constexpr kernel::Duration kFirstLook = std::chrono::microseconds(1);
constexpr kernel::Duration kLook = std::chrono::milliseconds(1);

void Raise(PowerCoordinator& coordinator, const std::wstring& event) {
    const std::span<const PowerRequest> known = PowerRequests();
    const auto request = std::ranges::find(known, event, &PowerRequest::event);
    if (request != known.end())
        coordinator.Raise(*request);
}

}  // namespace

ReplayInputs::ReplayInputs(const Recording& recording, Parts parts, std::function<void()> at_end)
    : parts_(parts), at_end_(std::move(at_end)) {
    const std::vector<std::size_t> outputs = OutputBook::CountBefore(recording);
    const std::vector<std::size_t> screens = ScreenJudge::CountBefore(recording);
    for (std::size_t index = 0; index < recording.moments.size(); ++index) {
        const RecordedMoment& recorded = recording.moments[index];
        Add({recorded.time, outputs[index], 0, {}}, recorded.moment);
        if (std::holds_alternative<FingerMoved>(recorded.moment))
            inputs_.back().screens_before = screens[index];
        const bool ends = std::holds_alternative<ClosingBegan>(recorded.moment) ||
                          std::holds_alternative<EventsLost>(recorded.moment) ||
                          std::holds_alternative<RecordingEnded>(recorded.moment);
        if (ends || index + 1 == recording.moments.size()) {
            inputs_.push_back({recorded.time, outputs[index], 0, at_end_});
            break;
        }
    }
    if (!inputs_.empty())
        FeedLater(inputs_.front().time);
}

ReplayInputs::~ReplayInputs() {
    kernel::Cancel(alarm_);
}

void ReplayInputs::Add(const Input& when, const Moment& moment) {
    const auto add = [&](std::chrono::microseconds after, std::function<void()> feed) {
        inputs_.push_back({when.time + after, when.outputs_before, 0, std::move(feed)});
    };
    const auto visit = [&]<class Kind>(const Kind& input) {
        VirtualUnit& unit = parts_.unit;
        if constexpr (std::is_same_v<Kind, LineBurst>) {
            if (input.direction == Direction::kToUnit)
                for (const LinePiece& piece : input.pieces)
                    add(piece.after, [this, &piece] { parts_.line.Deliver(piece.bytes); });
        } else if constexpr (std::is_same_v<Kind, FingerMoved>) {
            add({}, [&] { unit.Touch(input.touch, input.x, input.y); });
        } else if constexpr (std::is_same_v<Kind, SupplyChanged>) {
            add({}, [&] { unit.SetSupply(input.supply); });
        } else if constexpr (std::is_same_v<Kind, SuspendChanged>) {
            if (!input.suspended)
                add({}, [&] { unit.WakeUp(); });
        } else if constexpr (std::is_same_v<Kind, BoardFaultSwitched>) {
            if (input.fault == BoardFaultSwitched::Fault::kHalRefuses)
                add({}, [&] { unit.faults().SetHalRefuses(input.on); });
            else
                add({}, [&] { unit.faults().SetBatteryDriverFails(input.on); });
        } else if constexpr (std::is_same_v<Kind, ClockJumped>) {
            add({}, [&] { unit.JumpClock(input.forward); });
        } else if constexpr (std::is_same_v<Kind, PowerRequested>) {
            add({}, [&] { Raise(unit.power_coordinator(), input.event_name); });
        }
    };
    std::visit(visit, moment);
}

bool ReplayInputs::IsReady(const Input& input) const {
    return parts_.book.HaveCome(input.outputs_before) &&
           parts_.judge.HasCome(input.screens_before, kernel::Now());
}

void ReplayInputs::FeedLater(kernel::Time when) {
    alarm_ = kernel::At(when, [this] { Feed(); });
}

void ReplayInputs::Feed() {
    while (next_ < inputs_.size()) {
        const Input& input = inputs_[next_];
        const auto due = input.time + parts_.lateness.value();
        if (kernel::Now() < due) {
            FeedLater(due);
            return;
        }
        if (!IsReady(input)) {
            FeedLater(kernel::Now() + (std::exchange(waited_, true) ? kLook : kFirstLook));
            return;
        }
        waited_ = false;
        ++next_;
        input.feed();
    }
}

}  // namespace unit
