#include "tests/campaign/injector.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "unit/board/program_host.h"
#include "unit/commands/unit_commands.h"

namespace tests::campaign {

namespace kernel = platform::kernel;

namespace {

constexpr std::string_view kOnTheLine = "fault on the line";
constexpr std::string_view kSkip = "SKIP";
constexpr std::size_t kCallsRemembered = 4;
// Without messages no window responds or closes, and a window that cannot begin to paint is asked
// to paint again and again: these fail only once.
constexpr std::string_view kFailOnce[] = {"BeginPaint", "GetMessageW"};

}  // namespace

Injector::Injector(const Case& test_case, WizardRun& run) : run_(run), waiting_(test_case.faults) {
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
    for (const Fault& fault : waiting_)
        if (fault.FailsCalls() || fault.trigger == kByte)
            Execute(fault.kind->command, fault.number - 1);
}

void Injector::Execute(std::string_view command, std::uint64_t skip) {
    std::string text(command);
    if (const std::size_t at = text.find(kSkip); at != std::string::npos)
        text.replace(at, kSkip.size(), std::to_string(skip));
    unit::UnitCommands().Execute(run_.unit_operator(), text);
}

void Injector::Record(std::string_view fault) {
    const std::scoped_lock lock(mutex_);
    injections_.injected.push_back(fault);
    injections_.last = kernel::Now();
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
        if (!fault.FailsCalls())
            InjectNow(fault);
        else if (Record(fault.kind->name);
                 fault.kind->name != kFails &&
                 std::ranges::find(kFailOnce, call.call) == std::end(kFailOnce))
            kernel::AddCallFault({std::string(call.call), 0, kernel::kForEver});
}

void Injector::OnFailedCall(const kernel::FailedCall& call) {
    const std::size_t lines = run_.line_count();
    const std::scoped_lock lock(mutex_);
    const std::deque<std::string_view>& latest = latest_[call.thread];
    // The first of them is the call itself.
    injections_.failures.push_back({call, {latest.begin() + 1, latest.end()}, lines});
}

void Injector::OnByte(std::uint8_t byte) {
    const std::scoped_lock lock(mutex_);
    ++injections_.bytes;
    const auto segment = splitter_.Take(byte);
    if (!segment || segment->kind != unit::Segment::Kind::kFrame)
        return;
    for (const Fault& fault : TakeDue(kFrame, ++injections_.frames))
        kernel::At(kernel::Now(), [this, fault] { Inject(fault); });
}

void Injector::Inject(const Fault& fault) {
    // A fault of the line is recorded when it strikes.
    if (fault.kind->command.find(kSkip) == std::string_view::npos)
        Record(fault.kind->name);
    if (fault.kind->command.empty())
        unit::ProgramHost::CloseWindow();
    else
        Execute(fault.kind->command, 0);
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

Injections Injector::injections() const {
    const std::scoped_lock lock(mutex_);
    return injections_;
}

bool Injections::Has(std::string_view kind) const {
    return std::ranges::find(injected, kind) != injected.end();
}

}  // namespace tests::campaign
