#include "platform/kernel/call_faults.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <memory>
#include <mutex>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel_state.h"
#include "platform/kernel/scheduler.h"

namespace platform::kernel {
namespace {

constexpr std::size_t kAnyCall = kFailableCallCount;

constexpr std::size_t kMostRules = 1000;

// Fails the calls from the first to the last of these numbers.
struct Rule {
    std::size_t row;  // or kAnyCall
    std::uint64_t first;
    std::uint64_t last;
    std::optional<DWORD> error;
    std::uint64_t occurred = 0;
};

// How often the program made each call, and all of them together.
std::array<std::atomic<std::uint64_t>, kFailableCallCount + 1> g_counts;

// Set and removed while no thread of the program runs.
std::function<void(const MadeCall&)> g_call_observer;

// Whether there is any rule. A caller first counts and then reads this; adding a rule first sets
// this and then reads the count. So each call either precedes a rule or is subject to it.
std::atomic<bool> g_armed = false;

struct Faults {
    std::mutex mutex;
    std::vector<Rule> rules;
    std::vector<FailedCall> failed;
    std::uint64_t failed_count = 0;
    std::shared_ptr<const std::function<void(const FailedCall&)>> observer;
};

Faults& TheFaults() {
    static Faults faults;
    return faults;
}

std::uint64_t Sum(std::uint64_t a, std::uint64_t b) {
    return b > std::numeric_limits<std::uint64_t>::max() - a
               ? std::numeric_limits<std::uint64_t>::max()
               : a + b;
}

std::size_t RowOf(std::string_view call) {
    return call.empty() ? kAnyCall : FindFailableCall(call).value_or(kAnyCall + 1);
}

std::size_t Clear(const std::function<bool(const Rule&)>& chosen) {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    const std::size_t cleared = std::erase_if(faults.rules, chosen);
    g_armed = !faults.rules.empty();
    return cleared;
}

// The error of this call, if a rule fails it.
std::optional<DWORD> Strike(std::vector<Rule>& rules, std::size_t row, std::uint64_t number,
                            std::uint64_t number_of_all) {
    const auto rule = std::ranges::find_if(rules, [&](const Rule& each) {
        const std::uint64_t mine = each.row == kAnyCall ? number_of_all : number;
        return (each.row == kAnyCall || each.row == row) && mine >= each.first && mine <= each.last;
    });
    if (rule == rules.end())
        return std::nullopt;
    const DWORD error = rule->error.value_or(kFailableCalls[row].error);
    // Not by the count: it may include a call of another thread that has not come here yet.
    if (rule->occurred++ == rule->last - rule->first)
        rules.erase(rule);
    return error;
}

// A program may retry at once, again and again: the simulated clock must be able to advance.
void LetTheClockAdvance() {
    thread_local Time last_failure = kNever;
    if (CurrentOptions().mode == Mode::kSimulated && last_failure == Now()) {
        const Time deadline = Now() + std::chrono::milliseconds(1);
        KernelLock lock = LockKernel();
        Block(
            lock, [] { return false; }, deadline);
    }
    last_failure = Now();
}

bool Fail(std::size_t row, std::uint64_t number, std::uint64_t number_of_all) {
    Faults& faults = TheFaults();
    std::shared_ptr<const std::function<void(const FailedCall&)>> observer;
    FailedCall failed{.call = kFailableCalls[row].name,
                      .number = number,
                      .number_of_all = number_of_all,
                      .thread = CurrentThread().id,
                      .time = Now()};
    {
        const std::scoped_lock lock(faults.mutex);
        const std::optional<DWORD> error = Strike(faults.rules, row, number, number_of_all);
        g_armed = !faults.rules.empty();
        if (!error)
            return false;
        failed.error = *error;
        if (++faults.failed_count <= kFailedCallsKept)
            faults.failed.push_back(failed);
        observer = faults.observer;
    }
    if (observer)
        (*observer)(failed);
    LetTheClockAdvance();
    SetLastError(failed.error);
    return true;
}

}  // namespace

ApiCall::ApiCall() {
    ++t_depth;
    SchedulingPoint();
}

ApiCall::ApiCall(CallId id) {
    const bool outermost = t_depth++ == 0;
    // Globals of the program are constructed before the unit exists.
    if (!Booted())
        return;
    SchedulingPoint();
    if (!outermost || CurrentThread().process != kProgramProcess)
        return;
    const std::size_t row = id.row();
    const std::uint64_t number = ++g_counts[row];
    const std::uint64_t number_of_all = ++g_counts[kAnyCall];
    if (g_call_observer)
        g_call_observer({.call = kFailableCalls[row].name, .number_of_all = number_of_all});
    if (g_armed)
        fails_ = Fail(row, number, number_of_all);
}

void ForgetCallFaults() {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    faults.rules.clear();
    faults.failed.clear();
    faults.failed_count = 0;
    faults.observer = nullptr;
    g_call_observer = nullptr;
    g_armed = false;
    for (std::atomic<std::uint64_t>& count : g_counts)
        count = 0;
}

std::string AddCallFault(const CallFault& fault) {
    const std::size_t row = RowOf(fault.call);
    if (row > kAnyCall)
        return std::ranges::binary_search(kCallsThatCannotFail, std::string_view(fault.call))
                   ? fault.call + " cannot fail"
                   : "there is no call " + fault.call;
    if (fault.times == 0)
        return "a fault must fail at least one call";
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    if (faults.rules.size() >= kMostRules)
        return std::to_string(kMostRules) + " faults of calls are pending; no more are allowed";
    g_armed = true;
    const std::uint64_t first = Sum(Sum(g_counts[row], fault.skip), 1);
    faults.rules.push_back({row, first, Sum(first, fault.times - 1), fault.error});
    return {};
}

std::size_t ClearCallFaults(std::string_view call) {
    return Clear([row = RowOf(call)](const Rule& rule) { return rule.row == row; });
}

std::size_t ClearCallFaults() {
    return Clear([](const Rule&) { return true; });
}

std::vector<CallFault> PendingCallFaults() {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    std::vector<CallFault> pending;
    for (const Rule& rule : faults.rules) {
        const std::uint64_t made = g_counts[rule.row];
        if (made >= rule.last)
            continue;
        const std::uint64_t next = std::max(rule.first, made + 1);
        const bool for_ever = rule.last == std::numeric_limits<std::uint64_t>::max();
        pending.push_back(
            {.call = std::string(rule.row == kAnyCall ? "" : kFailableCalls[rule.row].name),
             .skip = next - made - 1,
             .times = for_ever ? kForEver : rule.last - next + 1,
             .error = rule.error});
    }
    return pending;
}

std::vector<std::string_view> FailableCallNames() {
    std::vector<std::string_view> names;
    for (const FailableCall& call : kFailableCalls)
        names.push_back(call.name);
    return names;
}

std::uint64_t CallCount(std::string_view call) {
    const auto row = FindFailableCall(call);
    return row ? g_counts[*row].load() : 0;
}

std::vector<std::pair<std::string_view, std::uint64_t>> CallCounts() {
    std::vector<std::pair<std::string_view, std::uint64_t>> counts;
    for (std::size_t row = 0; row < kFailableCallCount; ++row)
        if (const std::uint64_t count = g_counts[row])
            counts.emplace_back(kFailableCalls[row].name, count);
    return counts;
}

std::uint64_t CallCount() {
    return g_counts[kAnyCall];
}

std::vector<FailedCall> FailedCalls() {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    return faults.failed;
}

std::uint64_t FailedCallCount() {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    return faults.failed_count;
}

void ObserveFailedCalls(std::function<void(const FailedCall&)> observer) {
    Faults& faults = TheFaults();
    const std::scoped_lock lock(faults.mutex);
    faults.observer =
        observer
            ? std::make_shared<const std::function<void(const FailedCall&)>>(std::move(observer))
            : nullptr;
}

void ObserveCalls(std::function<void(const MadeCall&)> observer) {
    g_call_observer = std::move(observer);
}

}  // namespace platform::kernel
