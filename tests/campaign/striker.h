#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>

#include "tests/campaign/case.h"
#include "tests/campaign/failure_check.h"
#include "unit/commands/unit_commands.h"
#include "unit/events/event_hub.h"
#include "unit/line/frame_cutter.h"

namespace tests::campaign {

// What has come of a case so far.
struct Seen {
    std::vector<std::string_view> struck;
    // When the last fault came; nothing before the first.
    std::optional<platform::kernel::Time> last;
    std::vector<FailureSeen> failures;
    std::uint64_t frames = 0, bytes = 0;  // from the DVR

    bool Struck(std::string_view kind) const;
};

// Counts the moments of a run and lets the faults of a case come at theirs. To be made before the
// program has begun to run; hardware's thread, but for what it hears.
class Striker {
  public:
    Striker(const Case& trial, WizardRun& run, unit::Operator& hands);

    // Lets no more fault come; those that have stay.
    void Stop();

    Seen seen() const;

  private:
    void HearCall(const platform::kernel::MadeCall& call);
    void HearFailure(const platform::kernel::FailedCall& call);
    void HearByte(std::uint8_t byte);
    void Note(std::string_view fault);
    // Those that wait for this moment, which wait no longer. With the lock held.
    std::vector<Fault> TakeDue(Moment moment, std::uint64_t number);
    // On the hardware's thread, as soon as it may.
    void Strike(const Fault& fault);
    // Lets it come before the calling thread of the program goes on.
    void StrikeNow(const Fault& fault);
    void AddFault(const FaultKind& kind, std::uint64_t skip);

    WizardRun& run_;
    unit::Operator& hands_;
    mutable std::mutex mutex_;
    std::vector<Fault> waiting_;
    Seen seen_;
    std::map<DWORD, std::deque<std::string_view>> latest_;  // calls, by thread
    unit::FrameCutter cutter_;
    unit::EventHub::Subscription listening_;
};

}  // namespace tests::campaign
