#include <gtest/gtest.h>

#include "platform/kernel/scheduler.h"
#include "tests/rig/car_driver.h"
#include "tests/rig/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using unit::VirtualUnit;

constexpr wchar_t kSuccess[] = L"ファームウェアのアップデート終了です。";
constexpr wchar_t kFailure[] = L"ファームウェアのアップデートに失敗しました。";
constexpr wchar_t kError[] = L" 異常が発生した為、アップデート出来ません。";
constexpr wchar_t kImageMissing[] = L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。";
constexpr wchar_t kOffline[] = L"本体に外部電源を接続して下さい。";
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

// Who only does what the screen asks for comes to its end, and after a loss of power once more.
TEST(UpdateRoad, IsToldByTheScreen) {
    struct {
        const char* name;
        void (*prepare)(dvrsim::Faults&);
        CarDriver::End end;
    } const roads[] = {
        {"normal", [](dvrsim::Faults&) {}, CarDriver::End::kSuccess},
        {"no version", [](dvrsim::Faults& f) { f.silent_version = true; },
         CarDriver::End::kFailure},
        {"no card report", [](dvrsim::Faults& f) { f.silent_card = true; }, CarDriver::End::kError},
        {"hangs", [](dvrsim::Faults& f) { f.stop_at_percent = 7; }, CarDriver::End::kStandstill},
    };
    for (const auto& road : roads) {
        SCOPED_TRACE(road.name);
        VirtualUnit::Options options;
        road.prepare(options.dvr.dvr.faults);
        WizardRun run(options);
        CarDriver driver(run);
        EXPECT_EQ(driver.Drive(300s), road.end);
        run.unit().dvr().dvr()->SetFaults({});
        driver.CyclePower();
        EXPECT_EQ(driver.Drive(300s), CarDriver::End::kSuccess);
    }
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

TEST(UpdateRoad, NoCardReportAfterPowerOnShowsTheErrorScreen) {
    VirtualUnit::Options options;
    options.dvr.dvr.faults.silent_card = true;
    WizardRun run(options);
    ASSERT_TRUE(run.WaitForText(L"Power On", 5s));
    ASSERT_TRUE(run.Tap(L"Power On"));
    ASSERT_TRUE(run.WaitForText(L"OK", 2s));
    ASSERT_TRUE(run.Tap(L"OK"));
    ASSERT_TRUE(run.WaitForText(kError, 10s));
    EXPECT_TRUE(run.screen().CloseButton());
    EXPECT_FALSE(run.screen().Shows(L"Next"));
}

TEST(UpdateRoad, CardWithoutImageGivesTheNoticeAndAnotherTry) {
    WizardRun run;
    run.GoToInsertCard();
    run.unit().InsertCard("/");
    ASSERT_TRUE(run.WaitForText(L"Update", 5s));
    ASSERT_TRUE(run.Tap(L"Update"));
    ASSERT_TRUE(run.WaitForText(kImageMissing, 8s));
    EXPECT_TRUE(run.screen().Shows(L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。"));
    // The DVR boots, its card is reported, and the driver may try again.
    run.RunFor(4s);
    run.unit().RemoveCard();
    run.RunFor(2s);
    run.InsertImage();
    ASSERT_TRUE(run.WaitForText(L"Update", 5s));
    ASSERT_TRUE(run.Tap(L"Update"));
    ASSERT_TRUE(run.WaitForText(L"Update Percent : 5%", 15s));
    EXPECT_FALSE(run.screen().Shows(kImageMissing));
}

TEST(UpdateRoad, VersionNeverReportedShowsFailure) {
    VirtualUnit::Options options;
    options.dvr.dvr.faults.silent_version = true;
    WizardRun run(options);
    run.GoToRemoveCard();
    FinishFromRemoveCard(run);
    ASSERT_TRUE(run.WaitForText(kFailure, 20s));
    EXPECT_TRUE(run.screen().CloseButton());
}

TEST(UpdateRoad, PowerLostAndBackAtEveryStationRestartsAndStillUpdates) {
    using Go = void (WizardRun::*)();
    const Go stations[] = {nullptr, &WizardRun::GoToCheckCard, &WizardRun::GoToInsertCard,
                           &WizardRun::GoToUpdating, &WizardRun::GoToRemoveCard};
    for (const Go go : stations) {
        SCOPED_TRACE(&go - stations);
        WizardRun run;
        if (go)
            (run.*go)();
        else
            ASSERT_TRUE(run.WaitForText(L"Power On", 5s));
        run.unit().SetExternalPower(false);
        ASSERT_TRUE(run.WaitForText(kOffline, 3s));
        EXPECT_FALSE(run.screen().Shows(L"Next"));
        EXPECT_TRUE(run.Logged("AC_LINE_OFFLINE"));
        run.unit().RemoveCard();
        run.RunFor(1s);
        run.unit().SetExternalPower(true);
        ASSERT_TRUE(run.WaitForText(kFirstScreen, 3s));
        run.unit().ResetDvr();
        run.RunFor(5s);
        run.GoToRemoveCard();
        FinishFromRemoveCard(run);
        ASSERT_TRUE(run.WaitForText(kSuccess, 20s));
    }
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

TEST(UpdateRoad, ClosesInOrderFromEveryMoment) {
    for (int tenths = 0; tenths < 600; tenths += 23) {
        SCOPED_TRACE(tenths);
        WizardRun run;
        const auto user = [&run](const wchar_t* caption) {
            if (run.screen().Shows(caption))
                run.Tap(caption);
        };
        for (int passed = 0; passed < tenths; passed += 5) {
            run.RunFor(400ms);
            for (const wchar_t* caption : {L"Power On", L"OK", L"Next", L"Update"})
                user(caption);
            if (run.screen().Shows(L"5. DVR用SDカード挿入口にSDカードを入れて下さい。"))
                run.InsertImage();
        }
        run.Close();
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
