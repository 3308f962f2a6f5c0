#include <pm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "tests/unit_harness/wizard_run.h"

// What the unit's hardware does that no run of the program shows.

namespace tests {
namespace {

TEST(Hal, SuspendsTheUnitOnlyWithItsWord) {
    constexpr DWORD kEnterSuspend = 0x01012020;
    WizardRun run;
    DWORD returned = 0;
    for (const auto& [word, error] :
         {std::pair<DWORD, DWORD>(0x5A5A, ERROR_SUCCESS), {0x5A5B, ERROR_INVALID_PARAMETER}}) {
        const auto input = std::as_bytes(std::span(&word, 1));
        EXPECT_EQ(run.unit().HalRequest(kEnterSuspend, input, {}, returned), error);
    }
}

TEST(SuspendedUnit, IgnoresTouchesAndIsBlack) {
    WizardRun run;
    EXPECT_EQ(run.RunScenario("wait button 'Power On'\nwait 1s"), "");
    EXPECT_EQ(run.unit().ChangeSystemPower(POWER_STATE_SUSPEND, 0), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(run.RunScenario("expect suspended\ntap 'Power On'\nexpect no button OK for 2s"), "");
    const unit::Picture picture = run.unit().TakePicture();
    EXPECT_EQ(std::ranges::count(picture.pixels, 0U), std::ssize(picture.pixels));
    EXPECT_EQ(run.RunScenario("wake\ntap 'Power On'\nwait button OK within 2s"), "");
    EXPECT_EQ(run.unit().ChangeSystemPower(POWER_STATE_ON, 0), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(Scaler, ARefusedRequestChangesNothing) {
    constexpr DWORD kSetAlpha = 0x80012070;
    constexpr std::uint32_t kAlpha = 21;
    unit::Scaler scaler([] {});
    const auto input = std::as_bytes(std::span(&kAlpha, 1));
    std::byte output[4];
    DWORD returned = 0;
    EXPECT_EQ(scaler.Request(kSetAlpha, input, {}, returned), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(scaler.state().alpha, unit::kOpaqueAlpha);
    EXPECT_EQ(scaler.Request(kSetAlpha, input, output, returned), DWORD{ERROR_SUCCESS});
    EXPECT_EQ(scaler.state().alpha, kAlpha);
}

// A second copy may ask before the first one's program has made its mutex.
TEST(Program, OwnsItsNameBeforeItRunsUntilItHasItsWindow) {
    WizardRun run;
    const unit::ProgramHost& program = run.unit().program();
    EXPECT_TRUE(program.Starts(L"Tolvane"));
    EXPECT_FALSE(program.Starts(L"AtscNotify"));
    run.RunFor(std::chrono::seconds(1));
    EXPECT_FALSE(program.Starts(L"Tolvane"));
    run.Close();
    EXPECT_FALSE(program.Starts(L"Tolvane"));
}

TEST(TaskBar, ShowsTheTimeToTheMinute) {
    WizardRun run;
    const auto bar_after = [&](std::chrono::seconds time) {
        run.RunFor(time);
        const unit::Picture picture = run.unit().TakePicture();
        return std::vector(picture.pixels.end() - 8 * picture.width, picture.pixels.end());
    };
    const auto before = bar_after(std::chrono::seconds(1));
    EXPECT_NE(bar_after(std::chrono::minutes(1)), before);
}

}  // namespace
}  // namespace tests
