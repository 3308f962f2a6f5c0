#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/campaign/campaign.h"
#include "tests/campaign/failure_check.h"
#include "unit/board/program_host.h"
#include "unit/commands/unit_commands.h"
#include "unit/events/event_hub.h"
#include "unit/line/frame_splitter.h"

namespace tests::campaign {

namespace kernel = platform::kernel;

// What happened to a case so far.
struct Injections {
    std::vector<std::string_view> injected;
    // When the last fault was injected.
    std::optional<platform::kernel::Time> last;
    std::vector<CallFailure> failures;
    std::uint64_t frames = 0, bytes = 0;  // from the DVR

    bool Has(std::string_view kind) const { return std::ranges::count(injected, kind) > 0; }
};

// Counts the triggers of a run and injects the faults of a case at theirs. Construct it before the
// program has begun to run. Host thread, except for the observers.
class Injector {
  public:
    Injector(const Case& test_case, WizardRun& run) : run_(run), waiting_(test_case.faults) {
        kernel::ObserveCalls([this](const kernel::MadeCall& call) { OnCall(call); });
        kernel::ObserveFailedCalls([this](const kernel::FailedCall& call) { OnFailedCall(call); });
        subscription_ = run.unit().events().Subscribe([this](const unit::TimedEvent& event) {
            if (std::holds_alternative<unit::FaultApplied>(event.event))
                Record("fault on the line");
            const auto* const line = std::get_if<unit::LineBytes>(&event.event);
            if (line != nullptr && line->direction == unit::Direction::kToUnit)
                for (const std::uint8_t byte : line->bytes)
                    OnByte(byte);
        });
        for (const Fault& fault : waiting_)
            if (fault.kind->FailsCalls() || fault.trigger == kByte)
                Execute(fault.kind->command, fault.number - 1);
    }

    // Injects no more faults; those that were injected stay.
    void Stop() {
        const std::scoped_lock lock(mutex_);
        waiting_.clear();
    }
    Injections injections() const {
        const std::scoped_lock lock(mutex_);
        return injections_;
    }

  private:
    // Without messages no window responds or closes, and a window that cannot begin to paint is
    // asked to paint again and again: these fail only once.
    static bool FailsOnce(std::string_view call) {
        return call == "BeginPaint" || call == "GetMessageW";
    }

    void OnCall(const kernel::MadeCall& call) {
        std::vector<Fault> due;
        {
            const std::scoped_lock lock(mutex_);
            auto& latest = latest_[kernel::CurrentThread().id];
            latest.push_front(call.call);
            latest.resize(std::min(latest.size(), kCallsRemembered));
            due = TakeDue(kCall, call.number_of_all);
        }
        for (const Fault& fault : due) {
            if (!fault.kind->FailsCalls()) {
                InjectNow(fault);
                continue;
            }
            Record(fault.kind->name);
            if (fault.kind->name != kFails && !FailsOnce(call.call))
                kernel::AddCallFault({std::string(call.call), 0, kernel::kForEver});
        }
    }

    void OnFailedCall(const kernel::FailedCall& call) {
        CallFailure failure{call, {}, run_.line_count()};
        const std::scoped_lock lock(mutex_);
        const auto& latest = latest_[call.thread];
        // The first of them is the call itself.
        for (std::size_t at = 1; at < latest.size(); ++at)
            failure.before += std::string(latest[at]) + " ";
        injections_.failures.push_back(failure);
    }

    void OnByte(std::uint8_t byte) {
        const std::scoped_lock lock(mutex_);
        ++injections_.bytes;
        const auto segment = splitter_.Take(byte);
        if (!segment || segment->kind != unit::Segment::Kind::kFrame)
            return;
        for (const Fault& fault : TakeDue(kFrame, ++injections_.frames))
            kernel::At(kernel::Now(), [this, fault] { Inject(fault); });
    }

    void Record(std::string_view fault) {
        const std::scoped_lock lock(mutex_);
        injections_.injected.push_back(fault);
        injections_.last = kernel::Now();
    }

    // Removes the faults that wait for this trigger. With the lock held.
    std::vector<Fault> TakeDue(Trigger trigger, std::uint64_t number) {
        const auto due = std::ranges::stable_partition(waiting_, [&](const Fault& fault) {
            return fault.trigger != trigger || fault.number != number;
        });
        const std::vector<Fault> taken(due.begin(), due.end());
        waiting_.erase(due.begin(), due.end());
        return taken;
    }

    // Host thread.
    void Inject(const Fault& fault) {
        // A fault of the line is recorded when it occurs.
        if (fault.kind->command.find(kSkip) == std::string_view::npos)
            Record(fault.kind->name);
        if (fault.kind->command.empty())
            unit::ProgramHost::CloseWindow();
        else
            Execute(fault.kind->command, 0);
    }

    // Injects it before the calling thread of the program goes on.
    void InjectNow(const Fault& fault) {
        bool injected = false;
        kernel::At(kernel::Now(), [&] {
            Inject(fault);
            kernel::KernelLock lock = kernel::LockKernel();
            injected = true;
            kernel::Wake(lock);
        });
        kernel::KernelLock lock = kernel::LockKernel();
        kernel::Block(
            lock, [&] { return injected; }, kernel::kNever);
    }

    void Execute(std::string_view command, std::uint64_t skip) {
        std::string text(command);
        if (const std::size_t at = text.find(kSkip); at != std::string::npos)
            text.replace(at, kSkip.size(), std::to_string(skip));
        unit::UnitCommands().Execute(run_.unit_operator(), text);
    }

    static constexpr std::string_view kSkip = "SKIP";
    static constexpr std::size_t kCallsRemembered = 4;

    WizardRun& run_;
    mutable std::mutex mutex_;
    std::vector<Fault> waiting_;
    Injections injections_;
    std::map<DWORD, std::deque<std::string_view>> latest_;  // calls, by thread
    unit::FrameSplitter splitter_;
    unit::EventHub::Subscription subscription_;
};

}  // namespace tests::campaign
