#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <optional>

#include "tests/campaign/case.h"
#include "tests/campaign/failure_check.h"
#include "unit/events/event_hub.h"
#include "unit/line/frame_splitter.h"

namespace tests::campaign {

// What happened to a case so far.
struct Injections {
    std::vector<std::string_view> injected;
    // When the last fault was injected.
    std::optional<platform::kernel::Time> last;
    std::vector<CallFailure> failures;
    std::uint64_t frames = 0, bytes = 0;  // from the DVR

    bool Has(std::string_view kind) const;
};

// Counts the triggers of a run and injects the faults of a case at theirs. Construct it before the
// program has begun to run. Host thread, except for the observers.
class Injector {
  public:
    Injector(const Case& test_case, WizardRun& run);

    // Injects no more faults; those that were injected stay.
    void Stop();
    Injections injections() const;

  private:
    void OnCall(const platform::kernel::MadeCall& call);
    void OnFailedCall(const platform::kernel::FailedCall& call);
    void OnByte(std::uint8_t byte);
    void Record(std::string_view fault);
    // Removes the faults that wait for this trigger. With the lock held.
    std::vector<Fault> TakeDue(Trigger trigger, std::uint64_t number);
    // Host thread.
    void Inject(const Fault& fault);
    // Injects it before the calling thread of the program goes on.
    void InjectNow(const Fault& fault);
    void Execute(std::string_view command, std::uint64_t skip);

    WizardRun& run_;
    mutable std::mutex mutex_;
    std::vector<Fault> waiting_;
    Injections injections_;
    std::map<DWORD, std::deque<std::string_view>> latest_;  // calls, by thread
    unit::FrameSplitter splitter_;
    unit::EventHub::Subscription subscription_;
};

}  // namespace tests::campaign
