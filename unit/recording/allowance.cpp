#include "unit/recording/allowance.h"

#include <algorithm>

namespace unit {

Allowance Allowance::Of(const Recording& recording) {
    const RecordingHeader& header = recording.header;
    if (header.Simulated())
        return {};
    // More is no host that is slow, but a unit that was stopped or a clock that was put forward.
    constexpr std::chrono::microseconds kMostUnseen = std::chrono::seconds(10);
    // One round of the program's polling, and what a loaded host keeps a thread waiting.
    using std::chrono::milliseconds;
    const auto of_host = [&](std::chrono::microseconds time) {
        return std::chrono::microseconds(
            static_cast<std::int64_t>(static_cast<double>(time.count()) * header.kernel.speed));
    };
    Allowance allowance{milliseconds(100) + of_host(milliseconds(50)),
                        milliseconds(500) + of_host(milliseconds(200))};
    std::chrono::microseconds longest_unseen{};
    for (const RecordedMoment& recorded : recording.moments)
        if (const auto* unseen = std::get_if<ScreenUnseen>(&recorded.moment))
            longest_unseen = std::max(longest_unseen, recorded.time - unseen->since);
    allowance.work = std::max(allowance.work, std::min(longest_unseen, kMostUnseen));
    return allowance;
}

void Lateness::Note(std::chrono::microseconds recorded, std::chrono::microseconds came) {
    const auto late = (came - recorded).count();
    auto known = value_.load();
    while (late > known && !value_.compare_exchange_weak(known, late)) {
    }
}

}  // namespace unit
