#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>

#include "tests/campaign/case.h"
#include "tests/campaign/failure_check.h"
#include "unit/commands/unit_commands.h"
#include "unit/events/event_hub.h"
#include "unit/line/frame_splitter.h"

namespace tests::campaign {

// What has come of a case so far.
struct Injections {
    std::vector<std::string_view> injected;
    // When the last fault came; nothing before the first.
    std::optional<platform::kernel::Time> last;
    std::vector<FailureSeen> failures;
    std::uint64_t frames = 0, bytes = 0;  // from the DVR

    bool Injected(std::string_view kind) const;
};

// Counts the triggers of a run and lets the faults of a case come at theirs. To be made before the
// program has begun to run; hardware's thread, but for what it hears.
class Injector {
  public:
    Injector(const Case& trial, WizardRun& run, unit::Operator& unit_operator);

    // Lets no more fault come; those that have stay.
    void Stop();

    Injections seen() const;

  private:
    void OnCall(const platform::kernel::MadeCall& call);
    void OnFailedCall(const platform::kernel::FailedCall& call);
    void OnByte(std::uint8_t byte);
    void Record(std::string_view fault);
    // Those that wait for this trigger, which wait no longer. With the lock held.
    std::vector<Fault> TakeDue(Trigger trigger, std::uint64_t number);
    // On the hardware's thread, as soon as it may.
    void Inject(const Fault& fault);
    // Lets it come before the calling thread of the program goes on.
    void InjectNow(const Fault& fault);
    void AddFault(const FaultKind& kind, std::uint64_t skip);

    WizardRun& run_;
    unit::Operator& operator_;
    mutable std::mutex mutex_;
    std::vector<Fault> waiting_;
    Injections seen_;
    std::map<DWORD, std::deque<std::string_view>> latest_;  // calls, by thread
    unit::FrameSplitter splitter_;
    unit::EventHub::Subscription subscription_;
};

}  // namespace tests::campaign
