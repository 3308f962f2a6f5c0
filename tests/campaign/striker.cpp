#include "tests/campaign/striker.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "unit/line/fault_text.h"

namespace tests::campaign {

namespace kernel = platform::kernel;

namespace {

constexpr std::string_view kOnTheLine = "fault on the line";
constexpr std::size_t kCallsRemembered = 4;

}  // namespace

void Striker::Note(std::string_view fault) {
    const std::scoped_lock lock(mutex_);
    struck_.push_back(fault);
    last_ = kernel::Now();
}

Striker::Striker(const Case& trial, WizardRun& run) : run_(run) {
    kernel::ObserveCalls([this](const kernel::MadeCall& call) { HearCall(call); });
    kernel::ObserveFailedCalls([this](const kernel::FailedCall& call) { HearFailure(call); });
    listening_ = run.unit().events().Listen([this](const unit::TimedEvent& event) {
        if (std::holds_alternative<unit::FaultApplied>(event.event))
            Note(kOnTheLine);
        const auto* const line = std::get_if<unit::LineBytes>(&event.event);
        if (line != nullptr && line->direction == unit::Direction::kToUnit)
            for (const std::uint8_t byte : line->bytes)
                HearByte(byte);
    });
    for (const Fault& fault : trial.faults)
        Arm(fault);
}

void Striker::Arm(const Fault& fault) {
    if (fault.kind->name == kFails) {
        kernel::AddCallFault({.skip = fault.number - 1});
    } else if (fault.moment == Moment::kByte) {
        AddLineFault(*fault.kind, fault.number - 1);
    } else {
        waiting_.push_back(fault);
    }
}

void Striker::AddLineFault(const FaultKind& kind, std::uint64_t skip) {
    std::string problem;
    auto rule = unit::ParseFaultRule(kind.line_rule, problem);
    rule.value().skip = skip;
    rule->times = 1;
    run_.unit().dvr().faults().Add(*std::move(rule));
}

void Striker::Stop() {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.clear();
    }
    kernel::ClearCallFaults();
    run_.unit().dvr().faults().Clear();
}

void Striker::HearCall(const kernel::MadeCall& call) {
    std::vector<Fault> due;
    {
        const std::scoped_lock lock(mutex_);
        std::deque<std::string_view>& latest = latest_[kernel::CurrentThread().id];
        latest.push_front(call.call);
        if (latest.size() > kCallsRemembered)
            latest.pop_back();
        std::erase_if(waiting_, [&](const Fault& fault) {
            if (fault.moment != Moment::kCall || fault.number != call.number_of_all)
                return false;
            due.push_back(fault);
            return true;
        });
    }
    for (const Fault& fault : due)
        StrikeNow(fault);
}

void Striker::HearFailure(const kernel::FailedCall& call) {
    const std::size_t lines = run_.lines().size();
    const std::scoped_lock lock(mutex_);
    const std::deque<std::string_view>& latest = latest_[call.thread];
    // The first of them is the call itself.
    failures_.push_back({call, {latest.begin() + 1, latest.end()}, lines});
    struck_.push_back(kFails);
    last_ = kernel::Now();
}

void Striker::HearByte(std::uint8_t byte) {
    std::vector<Fault> due;
    {
        const std::scoped_lock lock(mutex_);
        ++bytes_;
        const auto cut = cutter_.Take(byte);
        if (!cut || cut->kind != unit::Cut::Kind::kFrame)
            return;
        ++frames_;
        std::erase_if(waiting_, [&](const Fault& fault) {
            if (fault.moment != Moment::kFrame || fault.number != frames_)
                return false;
            due.push_back(fault);
            return true;
        });
    }
    for (const Fault& fault : due)
        kernel::At(kernel::Now(), [this, fault] { Strike(fault); });
}

void Striker::Strike(const Fault& fault) {
    if (fault.kind->strike == nullptr) {
        AddLineFault(*fault.kind, 0);
        return;
    }
    Note(fault.kind->name);
    fault.kind->strike(run_);
}

void Striker::StrikeNow(const Fault& fault) {
    bool struck = false;
    kernel::At(kernel::Now(), [&] {
        Strike(fault);
        kernel::KernelLock lock = kernel::LockKernel();
        struck = true;
        kernel::Wake(lock);
    });
    kernel::KernelLock lock = kernel::LockKernel();
    kernel::Block(
        lock, [&] { return struck; }, kernel::kNever);
}

std::size_t Striker::struck() const {
    const std::scoped_lock lock(mutex_);
    return struck_.size();
}

bool Striker::Struck(std::string_view kind) const {
    const std::scoped_lock lock(mutex_);
    return std::ranges::find(struck_, kind) != struck_.end();
}

std::optional<kernel::Time> Striker::last() const {
    const std::scoped_lock lock(mutex_);
    return last_;
}

std::vector<FailureSeen> Striker::failures() const {
    const std::scoped_lock lock(mutex_);
    return failures_;
}

std::uint64_t Striker::frames() const {
    const std::scoped_lock lock(mutex_);
    return frames_;
}

std::uint64_t Striker::bytes() const {
    const std::scoped_lock lock(mutex_);
    return bytes_;
}

}  // namespace tests::campaign
