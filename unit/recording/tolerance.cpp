#include "unit/recording/tolerance.h"

#include <algorithm>

namespace unit {

Tolerance Tolerance::Of(const Recording& recording) {
    const RecordingHeader& header = recording.header;
    if (header.Simulated())
        return {};
    // A longer time is not a slow host but a unit that was stopped, or a clock that was set.
    constexpr std::chrono::microseconds kMaxUnseen = std::chrono::seconds(10);
    // One round of the program's polling, and the delay of a thread on a loaded host.
    using std::chrono::milliseconds;
    const auto of_host = [&](std::chrono::microseconds time) {
        return std::chrono::microseconds(
            static_cast<std::int64_t>(static_cast<double>(time.count()) * header.kernel.speed));
    };
    Tolerance tolerance{milliseconds(100) + of_host(milliseconds(50)),
                        milliseconds(500) + of_host(milliseconds(200))};
    std::chrono::microseconds longest_unseen{};
    for (const RecordedEvent& recorded : recording.events)
        if (const auto* unseen = std::get_if<ScreenUnseen>(&recorded.event))
            longest_unseen = std::max(longest_unseen, recorded.time - unseen->since);
    tolerance.work = std::max(tolerance.work, std::min(longest_unseen, kMaxUnseen));
    return tolerance;
}

void Lag::Note(std::chrono::microseconds recorded, std::chrono::microseconds replayed) {
    const auto lag = (replayed - recorded).count();
    auto known = value_.load();
    while (lag > known && !value_.compare_exchange_weak(known, lag)) {
    }
}

}  // namespace unit
