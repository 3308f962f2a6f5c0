#include "unit/recording/allowance.h"

namespace unit {

Allowance Allowance::Of(const RecordingHeader& header) {
    if (header.Simulated())
        return {};
    // One round of the program's polling, and what a loaded host keeps a thread waiting.
    using std::chrono::milliseconds;
    const auto of_host = [&](std::chrono::microseconds time) {
        return std::chrono::microseconds(
            static_cast<std::int64_t>(static_cast<double>(time.count()) * header.kernel.speed));
    };
    return {milliseconds(100) + of_host(milliseconds(50)),
            milliseconds(500) + of_host(milliseconds(200))};
}

void Lateness::Note(std::chrono::microseconds recorded, std::chrono::microseconds came) {
    const auto late = (came - recorded).count();
    auto known = value_.load();
    while (late > known && !value_.compare_exchange_weak(known, late)) {
    }
}

}  // namespace unit
