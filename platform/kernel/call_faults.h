#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/kernel/clock.h"

// Faults of API calls, and counts of the calls that the program made. Only calls that threads of
// the program make themselves count and fail, not those of other applications, of the host thread,
// or of the platform inside a call.
//
// Between Boot, which begins at zero and without faults, and Shutdown. Any thread.
namespace platform::kernel {

inline constexpr std::uint64_t kForEver = ~std::uint64_t{0};

struct CallFault {
    // A name of FailableCallNames(); empty: any call that can fail.
    std::string call{};
    // From now on `skip` calls of the program work, then `times` calls fail. An empty name with
    // skip = K - 1, set before the program starts, fails the K-th call of the run.
    std::uint64_t skip = 0;
    std::uint64_t times = 1;
    // The last error; by default the usual one for the call.
    std::optional<DWORD> error{};
};

// Empty, or one line that says why there can be no such fault. Faults add up; when two apply to one
// call, the first one gives the error.
//
// In simulated time a thread whose calls fail twice at the same time waits a millisecond the second
// time, so that a program that retries at once lets the clock advance.
std::string AddCallFault(const CallFault& fault);

// Clear the faults of that name (empty: those without a name), or all; return how many there were.
std::size_t ClearCallFaults(std::string_view call);
std::size_t ClearCallFaults();

// The faults that can still apply, in the order of their adding, with the remaining skip and times.
std::vector<CallFault> PendingCallFaults();

// In order.
std::vector<std::string_view> FailableCallNames();

// The program's calls that can fail, since Boot: of that name, by name (those that were made), and
// all. Those made to fail count too.
std::uint64_t CallCount(std::string_view call);
std::vector<std::pair<std::string_view, std::uint64_t>> CallCounts();
std::uint64_t CallCount();

// A call that was made to fail.
struct FailedCall {
    std::string_view call;
    std::uint64_t number = 0;         // among the program's calls of that name, from 1
    std::uint64_t number_of_all = 0;  // among all that can fail, from 1
    DWORD error = ERROR_SUCCESS;
    DWORD thread = 0;
    Time time{};
};

// The first kFailedCallsKept failed calls in their order; the number of all.
inline constexpr std::size_t kFailedCallsKept = 1000;
std::vector<FailedCall> FailedCalls();
std::uint64_t FailedCallCount();

// Calls `observer` for each failed call, on the calling thread, without locks; it must not wait. An
// empty observer ends this, and so does Shutdown.
void ObserveFailedCalls(std::function<void(const FailedCall&)> observer);

// A call of the program that can fail, whether it is made to fail or not.
struct MadeCall {
    std::string_view call;
    std::uint64_t number_of_all = 0;
};

// Calls `observer` just before each such call, on the calling thread, without locks; it may wait.
// An empty observer ends this, and so does Shutdown. Before the program's threads start.
void ObserveCalls(std::function<void(const MadeCall&)> observer);

}  // namespace platform::kernel
