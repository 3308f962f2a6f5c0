#include "platform/kernel/call_table.h"

#include <commctrl.h>
#include <objbase.h>
#include <pkfuncs.h>
#include <pm.h>

#include <map>

#include "platform/kernel/call_faults.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

// Makes a call whose arguments are all zero.
template <class Result, class... Arguments>
std::intptr_t CallWithZeros(Result (*call)(Arguments...)) {
    return (std::intptr_t)call(Arguments{}...);
}

constexpr DWORD kChosen = 424242;

// The documented failing values that are not zero.
const std::map<std::string, std::intptr_t> kFailedResults = {
    {"CoInitializeEx", E_OUTOFMEMORY},
    {"CreateFileW", -1},
    {"DialogBoxIndirectParamW", -1},
    {"GetMessageW", -1},
    {"MsgWaitForMultipleObjects", WAIT_FAILED},
    {"SetSystemPowerState", kChosen},
    {"SetTextColor", CLR_INVALID},
    {"StopPowerNotifications", kChosen},
    {"WaitForMultipleObjects", WAIT_FAILED},
    {"WaitForSingleObject", WAIT_FAILED},
};

// A call that reads its arguments first would return another value or leave another error.
void ExpectFailsByFault(const std::string& name, std::intptr_t (*call)()) {
    SCOPED_TRACE(name);
    const auto result = kFailedResults.find(name);
    EXPECT_EQ(kernel::AddCallFault({name, 0, 1, kChosen}), "");
    EXPECT_EQ(call(), result == kFailedResults.end() ? 0 : result->second);
    EXPECT_EQ(GetLastError(), kChosen);
    EXPECT_EQ(kernel::AddCallFault({.call = name}), "");
    call();
    EXPECT_TRUE(GetLastError() != ERROR_SUCCESS && GetLastError() != kChosen);
    EXPECT_EQ(kernel::CallCount(name), 2U);
    EXPECT_EQ(kernel::PendingCallFaults().size(), 0U);
}

PLATFORM_TEST(CallTable, EveryCallFailsWhenAFaultIsSet) {
#define EXPECT_CALL_FAILS(call, error) \
    ExpectFailsByFault(#call, [] { return CallWithZeros(call); });
    PLATFORM_FAILABLE_CALLS(EXPECT_CALL_FAILS)
#undef EXPECT_CALL_FAILS
}

}  // namespace
}  // namespace tests
