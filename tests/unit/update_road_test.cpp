#include <gtest/gtest.h>

#include "platform/kernel/scheduler.h"
#include "tests/rig/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::VirtualUnit;

constexpr wchar_t kSuccess[] = L"ファームウェアのアップデート終了です。";
constexpr wchar_t kFirstScreen[] = L"\"Power On\" ボタンを押下して下さい。";

void FinishFromRemoveCard(WizardRun& run) {
    run.unit().RemoveCard();
    ASSERT_TRUE(run.WaitForText(L"Next", 3s));
    ASSERT_TRUE(run.Tap(L"Next"));
}

TEST(UpdateRoad, EndsWithTheNewFirmwareAndTheCloseButton) {
    WizardRun run;
    run.GoToRemoveCard();
    FinishFromRemoveCard(run);
    ASSERT_TRUE(run.WaitForText(kSuccess, 20s));
    EXPECT_EQ(run.unit().dvr().dvr()->FirmwareVersion(), "14.09.01.V1.02.03");
    EXPECT_TRUE(run.screen().Shows(L"DVR : V1.02.03"));
    const auto close = run.screen().CloseButton();
    ASSERT_TRUE(close);
    run.TapAt(close->x, close->y);
    ASSERT_TRUE(run.RunUntil([&] { return !run.unit().program().running(); }, 5s));
    EXPECT_TRUE(run.Logged("---ThreadProc_COM_Rx"));
}

TEST(UpdateRoad, SameSeedSameOutput) {
    const auto walk = [](std::uint32_t seed) {
        VirtualUnit::Options options;
        options.kernel.seed = seed;
        options.dvr.dvr.seed = seed;
        WizardRun run(options);
        run.GoToRemoveCard();
        run.Close();
        return run.output();
    };
    const std::string first = walk(7);
    EXPECT_GT(first.size(), 5000U);
    EXPECT_EQ(first, walk(7));
    EXPECT_NE(first, walk(8));
}

// The tick count begins anew while the DVR updates.
TEST(UpdateRoad, SurvivesTheTickCountsWrap) {
    VirtualUnit::Options options;
    options.kernel.start = std::chrono::milliseconds(std::uint64_t{1} << 32) - 30s;
    WizardRun run(options);
    run.GoToRemoveCard();
    EXPECT_LT(GetTickCount(), 120000U);
    FinishFromRemoveCard(run);
    EXPECT_TRUE(run.WaitForText(kSuccess, 20s));
}

// Everything that the program waits for is overdue at once; it goes on from there.
TEST(UpdateRoad, SurvivesAClockThatJumps) {
    WizardRun run;
    run.GoToUpdating();
    EXPECT_TRUE(platform::kernel::JumpClock(5s));
    ASSERT_TRUE(run.WaitForText(L"OK", 60s)) << run.output();
    run.RunFor(1s);
    EXPECT_TRUE(platform::kernel::JumpClock(1h));
    ASSERT_TRUE(run.Tap(L"OK"));
    ASSERT_TRUE(run.WaitForText(L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 3s));
    FinishFromRemoveCard(run);
    EXPECT_TRUE(run.WaitForText(kSuccess, 20s));
}

TEST(UpdateRoad, MissingPartsAreLoggedAndPassedOver) {
    struct Case {
        const wchar_t* driver;
        WORD bitmap;
        const char* line;
    };
    const Case cases[] = {
        {L"COM9:", 0, "UART_Init() fail!!!, ErrorCode(55)"},
        {L"DVR1:", 0, "CMainFrame::Reset_DVR, CreateFile() fail!!!, ErrorCode(55)"},
        {L"SCA0:", 0, "Mstar_C4_Scaler_Init() fail!!!, ErroCode("},
        {nullptr, 202, "CMainFrame::OnCreate, LoadImage() fail!!!, ErrorCode("},
        {nullptr, 203, "CNotify::OnInitDialog, LoadImage() fail!!!, ErrorCode("},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        VirtualUnit::Options options;
        if (c.driver)
            options.missing_drivers = {c.driver};
        else
            options.missing_bitmaps = {c.bitmap};
        WizardRun run(options);
        ASSERT_TRUE(run.WaitForText(L"Power On", 5s));
        ASSERT_TRUE(run.Tap(L"Power On"));
        ASSERT_TRUE(run.WaitForText(L"OK", 2s));
        ASSERT_TRUE(run.Tap(L"OK"));
        run.RunFor(20s);
        EXPECT_TRUE(run.Logged(c.line)) << run.output();
        EXPECT_FALSE(run.screen().Shows(kFirstScreen));
    }
}

TEST(UpdateRoad, RandomSchedulesReachTheSameEnd) {
#ifdef __SANITIZE_THREAD__
    // One thread at a time: there is little to see for this sanitizer, and it is slow.
    constexpr std::uint32_t kSeeds = 4;
#else
    constexpr std::uint32_t kSeeds = 20;
#endif
    for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        VirtualUnit::Options options;
        options.kernel.seed = seed;
        options.kernel.preempt = true;
        options.dvr.dvr.seed = seed;
        WizardRun run(options);
        run.GoToRemoveCard();
        FinishFromRemoveCard(run);
        ASSERT_TRUE(run.WaitForText(kSuccess, 20s));
    }
}

TEST(UpdateRoad, FreeRunningOverMemoryAndPseudoTerminal) {
    for (const auto line : {unit::DvrBay::Line::kMemory, unit::DvrBay::Line::kPseudoTerminal}) {
        VirtualUnit::Options options;
        options.kernel.mode = platform::kernel::Mode::kFreeRunning;
        options.kernel.speed = 4;
        options.dvr.line = line;
        WizardRun run(options);
        run.GoToRemoveCard();
        FinishFromRemoveCard(run);
        ASSERT_TRUE(run.WaitForText(kSuccess, 20s));
    }
}

}  // namespace
}  // namespace tests
