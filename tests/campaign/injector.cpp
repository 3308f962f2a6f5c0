#include "tests/campaign/injector.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "unit/board/program_host.h"

namespace tests::campaign {

namespace kernel = platform::kernel;

namespace {

constexpr std::string_view kOnTheLine = "fault on the line";
constexpr std::size_t kCallsRemembered = 4;

}  // namespace

void Injector::Record(std::string_view fault) {
    const std::scoped_lock lock(mutex_);
    seen_.injected.push_back(fault);
    seen_.last = kernel::Now();
}

Injector::Injector(const Case& trial, WizardRun& run, unit::Operator& unit_operator)
    : run_(run), operator_(unit_operator) {
    kernel::ObserveCalls([this](const kernel::MadeCall& call) { OnCall(call); });
    kernel::ObserveFailedCalls([this](const kernel::FailedCall& call) { OnFailedCall(call); });
    subscription_ = run.unit().events().Subscribe([this](const unit::TimedEvent& event) {
        if (std::holds_alternative<unit::FaultApplied>(event.event))
            Record(kOnTheLine);
        const auto* const line = std::get_if<unit::LineBytes>(&event.event);
        if (line != nullptr && line->direction == unit::Direction::kToUnit)
            for (const std::uint8_t byte : line->bytes)
                OnByte(byte);
    });
    for (const Fault& fault : trial.faults) {
        if (fault.kind->name == kFails || fault.trigger == kByte)
            AddFault(*fault.kind, fault.number - 1);
        else
            waiting_.push_back(fault);
    }
}

void Injector::AddFault(const FaultKind& kind, std::uint64_t skip) {
    const auto outcome = unit::UnitCommands().Execute(
        operator_, std::string(kind.command) + " after " + std::to_string(skip) + " times 1");
    if (!outcome.done)
        throw std::logic_error(outcome.text);
}

void Injector::Stop() {
    const std::scoped_lock lock(mutex_);
    waiting_.clear();
}

std::vector<Fault> Injector::TakeDue(Trigger trigger, std::uint64_t number) {
    std::vector<Fault> due;
    std::erase_if(waiting_, [&](const Fault& fault) {
        if (fault.trigger != trigger || fault.number != number)
            return false;
        due.push_back(fault);
        return true;
    });
    return due;
}

void Injector::OnCall(const kernel::MadeCall& call) {
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
        InjectNow(fault);
}

void Injector::OnFailedCall(const kernel::FailedCall& call) {
    const std::size_t lines = run_.lines().size();
    Record(kFails);
    const std::scoped_lock lock(mutex_);
    const std::deque<std::string_view>& latest = latest_[call.thread];
    // The first of them is the call itself.
    seen_.failures.push_back({call, {latest.begin() + 1, latest.end()}, lines});
}

void Injector::OnByte(std::uint8_t byte) {
    const std::scoped_lock lock(mutex_);
    ++seen_.bytes;
    const auto segment = splitter_.Take(byte);
    if (!segment || segment->kind != unit::Segment::Kind::kFrame)
        return;
    for (const Fault& fault : TakeDue(kFrame, ++seen_.frames))
        kernel::At(kernel::Now(), [this, fault] { Inject(fault); });
}

void Injector::Inject(const Fault& fault) {
    if (fault.kind->counts)
        return AddFault(*fault.kind, 0);
    Record(fault.kind->name);
    if (fault.kind->command.empty())
        unit::ProgramHost::CloseWindow();
    else
        unit::UnitCommands().Execute(operator_, fault.kind->command);
}

void Injector::InjectNow(const Fault& fault) {
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

Injections Injector::seen() const {
    const std::scoped_lock lock(mutex_);
    return seen_;
}

bool Injections::Injected(std::string_view kind) const {
    return std::ranges::find(injected, kind) != injected.end();
}

}  // namespace tests::campaign
