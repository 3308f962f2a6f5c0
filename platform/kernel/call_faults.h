#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/kernel/clock.h"

// Calls of the API that fail on demand, and the count of those that the program made. Only calls
// that threads of the program make themselves count and fail, not those of the unit's other
// applications, of the hardware's thread, or of the platform on a call's way.
//
// Between Boot, which begins at zero and without faults, and Shutdown. Any thread.
namespace platform::kernel {

inline constexpr std::uint64_t kForEver = ~std::uint64_t{0};

struct CallFault {
    // A name of FailableCallNames(); empty for whatever call that can fail comes next.
    std::string call{};
    // So many calls of the program from now on still work, then so many fail. The K-th call of the
    // whole run fails with an empty name and skip = K - 1, set before the program starts.
    std::uint64_t skip = 0;
    std::uint64_t times = 1;
    // The last error; without one that which is usual for the call.
    std::optional<DWORD> error{};
};

// Empty, or one line that says why there can be no such fault. Faults add up; of two that meet, the
// one that was added first gives the error.
//
// In simulated time a thread that fails twice at one time waits a millisecond the second time: a
// program that tries again at once must let the clock get on.
std::string AddCallFault(const CallFault& fault);

// Those of that name (empty: those of no name), or all; returns how many there were.
std::size_t ClearCallFaults(std::string_view call);
std::size_t ClearCallFaults();

// The faults that may still strike, in the order of their adding; skip and times count what is
// left.
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

// The first kFailedCallsKept of them in their order; how many there were in all.
inline constexpr std::size_t kFailedCallsKept = 1000;
std::vector<FailedCall> FailedCalls();
std::uint64_t FailedCallCount();

// `observer` is told of each failed call, on the thread that makes the call, without locks; it must
// not wait. An empty one ends it. Shutdown forgets it.
void ObserveFailedCalls(std::function<void(const FailedCall&)> observer);

// A call of the program that can fail, whether it is made to fail or not.
struct MadeCall {
    std::string_view call;
    std::uint64_t number_of_all = 0;
};

// `observer` is told of each just before it is made, on the thread that makes it, without locks; it
// may wait. An empty one ends it. Shutdown forgets it. Before the program's threads start.
void ObserveCalls(std::function<void(const MadeCall&)> observer);

}  // namespace platform::kernel
