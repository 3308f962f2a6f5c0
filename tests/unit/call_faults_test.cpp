#include <gtest/gtest.h>

#include "platform/kernel/call_faults.h"
#include "tests/rig/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

// A call that fails once is told in the program's own words, and the program still ends in order.
TEST(CallFaultsOfTheProgram, AreLoggedAndSurvived) {
    struct {
        kernel::CallFault fault;
        const char* line;
    } const rows[] = {
        {{.call = "CreateFileW"}, "COM_Init, CreateFile() fail!!!, ErrorCode(55), "},
        {{"CreateFileW", 0, 1, 32}, "COM_Init, CreateFile() fail!!!, ErrorCode(32), "},
        {{.call = "SetCommTimeouts"}, "COM_Init, SetCommTimeouts() fail!!!, ErrorCode(31), "},
        {{"CreateThread", 0, 1, 8}, "CreateThread() fail!!!, ErrorCode(8), "},
    };
    for (const auto& row : rows) {
        WizardRun run;
        ASSERT_EQ(kernel::AddCallFault(row.fault), "");
        ASSERT_TRUE(run.WaitForText(L"Power On", 10s)) << row.line;
        EXPECT_TRUE(run.Logged(row.line)) << row.line << "\n" << run.output();
        EXPECT_EQ(kernel::FailedCallCount(), 1U) << row.line;
        run.Close();
    }
}

// What the program could not close is still there when it has ended.
TEST(CallFaultsOfTheProgram, LeaveOpenWhatCouldNotBeClosed) {
    WizardRun run;
    ASSERT_TRUE(run.WaitForText(L"Power On", 10s));
    ASSERT_EQ(kernel::AddCallFault({.call = "CloseHandle"}), "");
    run.ExpectLeftovers("1 handles");
    run.Close();
    EXPECT_EQ(kernel::FailedCallCount(), 1U);
}

// Whatever call of the start fails: the program neither crashes nor hangs, and ends when asked to.
// Last in its process, which keeps the drawing objects that could not be deleted.
TEST(CallFaultsOfTheProgram, EachOfTheStartIsSurvived) {
    for (std::uint64_t k = 1;; ++k) {
        WizardRun run;
        ASSERT_EQ(kernel::AddCallFault({.skip = k - 1}), "");
        run.WaitForText(L"Power On", 3s);
        const auto failed = kernel::FailedCalls();
        EXPECT_TRUE(run.CloseAnyhow()) << "call " << k;
        if (failed.empty()) {
            EXPECT_GT(k, 150U);
            break;
        }
    }
}

}  // namespace
}  // namespace tests
