#include <gtest/gtest.h>

#include "platform/kernel/clock.h"
#include "tests/bench/wizard_bench.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using Log = std::vector<std::string>;

constexpr auto kNever = std::chrono::milliseconds(-1);

constexpr char kNoDriver[] =
    "\tCMainFrame::Reset_DVR, CreateFile() fail!!!, ErrorCode(55), MainFrmDvr.cpp(#)";
constexpr char kRefused[] =
    "\tCMainFrame::Reset_DVR, DeviceIoControl() fail!!!, ErrorCode(5), MainFrmDvr.cpp(#)";

enum class Driver { kWorks, kMissing, kRefuses };

void Set(WizardBench& bench, Driver driver) {
    if (driver == Driver::kMissing)
        bench.Remove(L"DVR1:");
    if (driver == Driver::kRefuses)
        bench.reset->request_answer = ERROR_ACCESS_DENIED;
}

Log ResetLog(Driver driver) {
    if (driver == Driver::kWorks)
        return {};
    return {driver == Driver::kMissing ? kNoDriver : kRefused};
}

// Between `expected` and one step of the polling's granularity of this test after it.
void ExpectAt(std::chrono::microseconds time, std::chrono::milliseconds expected) {
    EXPECT_GE(time, expected);
    EXPECT_LT(time, expected + 15ms);
}

TEST(Waits, PowerOnResetsAndPollsForACardReport) {
    struct {
        Driver driver;
        std::chrono::milliseconds card;  // after OK
        BYTE status;
        std::chrono::milliseconds arrives;
    } const rows[] = {
        {Driver::kWorks, 1000ms, 0, 2000ms},   {Driver::kWorks, 1000ms, 4, 2000ms},
        {Driver::kWorks, 3050ms, 1, 3100ms},   {Driver::kWorks, 5950ms, 0, 6000ms},
        {Driver::kWorks, kNever, 0, 6000ms},   {Driver::kMissing, 1050ms, 0, 1100ms},
        {Driver::kMissing, kNever, 0, 4000ms}, {Driver::kRefuses, 1050ms, 0, 1100ms},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        WizardBench bench;
        bench.Start();
        EXPECT_EQ(bench.TakeFrames(), "8010 8011 802E 8026");
        Set(bench, row.driver);
        ASSERT_TRUE(bench.Tap("Power On"));
        bench.RunFor(5s);
        EXPECT_EQ(bench.reset->requests.size(), 0U) << "the notice comes first";
        bench.Mark();
        bench.Press(700, 440);
        bench.HoldPercent(5);  // of an update before, to be forgotten
        const auto start = platform::kernel::Now();
        if (row.card != kNever)
            bench.After(row.card, [&] { bench.Card(row.status); });
        bench.Release(700, 440);
        bench.RunFor(row.arrives - 20ms);
        EXPECT_EQ(bench.Step(), -1);
        EXPECT_EQ(bench.scaler->requests.size(), 0U);
        bench.RunFor(40ms);
        EXPECT_EQ(bench.Step(), 0);
        EXPECT_EQ(bench.TakeFrames(), row.card == kNever ? "802E 8026" : "802E 802E 8026");
        ExpectAt(bench.frames.back().time - start, row.arrives);
        EXPECT_EQ(bench.reset->Take(), Log(row.driver == Driver::kMissing ? 0 : 1, "0881 02"));
        EXPECT_EQ(bench.TakeLog("Reset_DVR"), ResetLog(row.driver));
    }
}

TEST(Waits, NextMovesOnBeforeTheReset) {
    for (const Driver driver : {Driver::kWorks, Driver::kMissing, Driver::kRefuses}) {
        WizardBench bench;
        bench.GoTo(0);
        Set(bench, driver);
        bench.HoldPercent(5);
        const auto start = platform::kernel::Now();
        ASSERT_TRUE(bench.Tap("Next"));
        bench.RunFor(2ms);
        EXPECT_EQ(bench.Step(), 1);
        EXPECT_EQ(bench.Buttons(), "");
        bench.RunFor(2500ms);
        ASSERT_EQ(bench.scaler->requests.size(), WizardBench::kVideoOn.size());
        // The tap takes 20 ms, the timer 100.
        ExpectAt(bench.scaler->requests[0].time - start, driver == Driver::kWorks ? 2120ms : 120ms);
        EXPECT_EQ(bench.TakeLog("CMainFrame::"), ResetLog(driver));
    }
}

TEST(Waits, TheScalerMayHoldUpTheWindowButNotTheDvr) {
    for (const auto appears : {3000ms, kNever}) {
        WizardBench bench;
        bench.GoTo(0);
        bench.Mark();
        bench.Remove(L"SCA0:");
        bench.Tap("Next");
        if (appears != kNever)
            bench.After(2s + appears,
                        [&] { bench.platform.board.drivers[L"SCA0:"] = bench.scaler; });
        bench.RunFor(4s);
        bench.Card(1);
        bench.RunFor(10ms);
        EXPECT_EQ(bench.TakeFrames(), "802E");
        EXPECT_EQ(bench.Buttons(), "");
        bench.RunFor(12s);
        EXPECT_EQ(bench.Buttons(), "Update");
        EXPECT_EQ(bench.scaler->Take(), appears == kNever ? Log() : WizardBench::kVideoOn);
        EXPECT_EQ(bench.TakeLog("CMainFrame::OnTimer"),
                  appears == kNever ? Log{"\tCMainFrame::OnTimer, Mstar_C4_Scaler_Init() fail!!!, "
                                          "ErroCode(55), MainFrmVideo.cpp(#)"}
                                    : Log());
    }
}

// The user-interface thread sleeps over the reset: the receive thread must get on without it.
TEST(Waits, CardReportsAtTheUpdateTapDoNotHoldUpThePercent) {
    WizardBench bench;
    bench.GoTo(1);
    bench.Card(1);
    bench.RunFor(10ms);
    bench.Press(700, 440);
    for (int count = 0; count < 20; ++count)
        bench.After(count * 300us, [&] { bench.Card(1); });
    bench.After(500ms, [&] { bench.Percent(7); });
    bench.Release(700, 440);
    bench.RunFor(500ms);
    EXPECT_EQ(bench.TakeLog("Percent:7%"), Log{"\tFW_Upgrade_Version_IND, Percent:7%"});
    bench.RunFor(1450ms);
    EXPECT_FALSE(bench.Shows("Update Percent : 7%")) << "paints during the reset";
    bench.RunFor(100ms);
    EXPECT_TRUE(bench.Shows("Update Percent : 7%"));
    EXPECT_EQ(bench.Step(), 2);
    EXPECT_EQ(bench.reset->Take(), Log{"0881 02"});
}

TEST(Waits, RebootWaitsUntilTheDvrLeavesThatState) {
    struct {
        std::chrono::milliseconds report;
        std::chrono::milliseconds asks_again;
        const char* frames;
    } const rows[] = {
        {kNever, 10900ms, "001C 802E"},
        {3050ms, 4100ms, "001C 802E 8026 802E"},
    };
    for (const auto& row : rows) {
        WizardBench bench;
        bench.GoTo(5);
        bench.Version("14.09.01.V1.02.03");
        bench.RunFor(20ms);
        EXPECT_TRUE(bench.Shows("DVR : V1.02.03"));
        bench.HoldPercent(100);
        const auto start = platform::kernel::Now();
        if (row.report != kNever)
            bench.After(row.report, [&] { bench.Running(DVR_RUNNING_STATE_INIT_OK); });
        bench.Command(IDC_BTN_UPDATE);
        bench.RunFor(12s);
        EXPECT_EQ(bench.TakeFrames(), row.frames);
        ExpectAt(bench.frames.back().time - start, row.asks_again);
        // The paintings saw the 100 per cent too, and go on as after any update.
        EXPECT_TRUE(bench.Tap("OK"));
        bench.RunFor(20ms);
        EXPECT_EQ(bench.Step(), 4);
    }
}

TEST(Waits, EndOfTheUpdateAndOfTheRestartAreShownAfterAWhile) {
    WizardBench bench;
    bench.GoTo(2);
    bench.Percent(100);
    bench.RunFor(2990ms);
    EXPECT_EQ(bench.Instructions(), Log{"W 6. しばらくお待ち下さい。"});
    bench.RunFor(20ms);
    EXPECT_TRUE(bench.Shows("OK"));
    bench.RunFor(20s);
    EXPECT_EQ(bench.Step(), 3) << "the notice waits for the user";
    bench.Tap("OK");
    bench.RunFor(5s);
    EXPECT_EQ(bench.Step(), 4);
    bench.Running(DVR_RUNNING_STATE_NORMAL);
    bench.RunFor(1980ms);
    EXPECT_EQ(bench.Step(), 5);
    EXPECT_EQ(bench.Buttons(), "Next");
    bench.RunFor(40ms);
    EXPECT_EQ(bench.Buttons(), "X");
}

TEST(Suspend, IsAskedOfTheHalAfterThePainting) {
    constexpr char kAccepted[] = "\tCMainFrame::OnXCommand, SystemSuspend";
    constexpr char kHalRefused[] =
        "\tCMainFrame::OnXCommand, KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE ) fail!!!, "
        "ErrorCode(50), MainFrmSuspend.cpp(#)";
    for (const bool accepts : {true, false}) {
        WizardBench bench;
        bench.GoTo(5);
        PlainBoard& board = bench.platform.board;
        board.hal_codes.clear();
        board.hal_answer = accepts ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
        Log seen;
        board.on_hal_request = [&](std::span<const std::byte> input) {
            seen = bench.Instructions();
            EXPECT_EQ(std::vector(input.begin(), input.end()),
                      (std::vector{std::byte{0x5A}, std::byte{0x5A}, std::byte{0}, std::byte{0}}));
        };
        bench.Command(IDC_BTN_SUSPEND);
        bench.RunFor(100ms);
        EXPECT_EQ(board.hal_codes, std::vector<DWORD>{0x01012020});
        EXPECT_EQ(seen, (Log{"W Please make sure DVR Firmware is correct.",
                             "W 画面右上の終了ボタンを押下して下さい。",
                             "W To continue to upgrade, please re-open the program."}));
        EXPECT_EQ(board.power_states, std::vector<DWORD>(accepts ? 1 : 0, 0x00020000));
        EXPECT_EQ(bench.TakeLog("CMainFrame::"), Log{accepts ? kAccepted : kHalRefused});
        EXPECT_EQ(bench.Step(), 6);
        bench.Command(IDC_BTN_SUSPEND);
        bench.RunFor(100ms);
        EXPECT_EQ(board.hal_codes.size(), 1U) << "step 6 does not suspend";
    }
}

}  // namespace
}  // namespace tests
