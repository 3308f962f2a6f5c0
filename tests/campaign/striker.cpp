#include "tests/campaign/striker.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "unit/board/program_host.h"

namespace tests::campaign {

namespace kernel = platform::kernel;

namespace {

constexpr std::string_view kOnTheLine = "fault on the line";
constexpr std::size_t kCallsRemembered = 4;

}  // namespace

void Striker::Note(std::string_view fault) {
    const std::scoped_lock lock(mutex_);
    seen_.struck.push_back(fault);
    seen_.last = kernel::Now();
}

Striker::Striker(const Case& trial, WizardRun& run, unit::Operator& hands)
    : run_(run), hands_(hands) {
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
    for (const Fault& fault : trial.faults) {
        if (fault.kind->name == kFails || fault.moment == kByte)
            AddFault(*fault.kind, fault.number - 1);
        else
            waiting_.push_back(fault);
    }
}

void Striker::AddFault(const FaultKind& kind, std::uint64_t skip) {
    const auto outcome = unit::UnitCommands().Follow(
        hands_, std::string(kind.command) + " after " + std::to_string(skip) + " times 1");
    if (!outcome.done)
        throw std::logic_error(outcome.text);
}

void Striker::Stop() {
    const std::scoped_lock lock(mutex_);
    waiting_.clear();
}

std::vector<Fault> Striker::TakeDue(Moment moment, std::uint64_t number) {
    std::vector<Fault> due;
    std::erase_if(waiting_, [&](const Fault& fault) {
        if (fault.moment != moment || fault.number != number)
            return false;
        due.push_back(fault);
        return true;
    });
    return due;
}

void Striker::HearCall(const kernel::MadeCall& call) {
    std::vector<Fault> due;
    {
        const std::scoped_lock lock(mutex_);
        std::deque<std::string_view>& latest = latest_[kernel::CurrentThread().id];
        latest.push_front(call.call);
        if (latest.size() > kCallsRemembered)
            latest.pop_back();
        due = TakeDue(kCall, call.number_of_all);
    }
    for (const Fault& fault : due)
        StrikeNow(fault);
}

void Striker::HearFailure(const kernel::FailedCall& call) {
    const std::size_t lines = run_.lines().size();
    Note(kFails);
    const std::scoped_lock lock(mutex_);
    const std::deque<std::string_view>& latest = latest_[call.thread];
    // The first of them is the call itself.
    seen_.failures.push_back({call, {latest.begin() + 1, latest.end()}, lines});
}

void Striker::HearByte(std::uint8_t byte) {
    const std::scoped_lock lock(mutex_);
    ++seen_.bytes;
    const auto cut = cutter_.Take(byte);
    if (!cut || cut->kind != unit::Cut::Kind::kFrame)
        return;
    for (const Fault& fault : TakeDue(kFrame, ++seen_.frames))
        kernel::At(kernel::Now(), [this, fault] { Strike(fault); });
}

void Striker::Strike(const Fault& fault) {
    if (fault.kind->counts)
        return AddFault(*fault.kind, 0);
    Note(fault.kind->name);
    if (fault.kind->command.empty())
        unit::ProgramHost::CloseWindow();
    else
        unit::UnitCommands().Follow(hands_, fault.kind->command);
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

Seen Striker::seen() const {
    const std::scoped_lock lock(mutex_);
    return seen_;
}

bool Seen::Struck(std::string_view kind) const {
    return std::ranges::find(struck, kind) != struck.end();
}

}  // namespace tests::campaign
