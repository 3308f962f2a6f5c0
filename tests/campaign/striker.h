#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string_view>
#include <vector>

#include "tests/campaign/case.h"
#include "tests/campaign/log_check.h"
#include "unit/events/event_hub.h"
#include "unit/line/frame_cutter.h"

namespace tests::campaign {

// Counts the moments of a run and lets the faults of a case come at theirs. To be made before the
// program has begun to run; hardware's thread, but for what it hears.
class Striker {
  public:
    Striker(const Case& trial, WizardRun& run);

    // Lets no more fault come, and takes back those that last.
    void Stop();

    std::size_t struck() const;
    bool Struck(std::string_view kind) const;
    // When the last fault came; nothing before the first.
    std::optional<platform::kernel::Time> last() const;
    std::vector<FailureSeen> failures() const;
    std::uint64_t frames() const;
    std::uint64_t bytes() const;

  private:
    void HearCall(const platform::kernel::MadeCall& call);
    void HearFailure(const platform::kernel::FailedCall& call);
    void HearByte(std::uint8_t byte);
    void Note(std::string_view fault);
    void Arm(const Fault& fault);
    // On the hardware's thread, as soon as it may.
    void Strike(const Fault& fault);
    // Lets it come before the calling thread of the program goes on.
    void StrikeNow(const Fault& fault);
    void AddLineFault(const FaultKind& kind, std::uint64_t skip);

    WizardRun& run_;
    mutable std::mutex mutex_;
    std::vector<Fault> waiting_;
    std::vector<std::string_view> struck_;
    std::optional<platform::kernel::Time> last_;
    std::map<DWORD, std::deque<std::string_view>> latest_;  // calls, by thread
    std::vector<FailureSeen> failures_;
    unit::FrameCutter cutter_;
    std::uint64_t frames_ = 0;
    std::uint64_t bytes_ = 0;
    unit::EventHub::Subscription listening_;
};

}  // namespace tests::campaign
