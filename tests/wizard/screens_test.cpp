#include <gtest/gtest.h>

#include <algorithm>

#include "tests/bench/wizard_bench.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using Lines = std::vector<std::string>;

constexpr std::uint32_t kKey = 0x001000;
constexpr std::uint32_t kGrey = 0x7F7F7F;
constexpr POINT kFreePlace = {5, 475};

constexpr char kReading[] = "W DVR : 読み込み中";
constexpr char kImageMissing[] = "B DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。";
constexpr char kOffline[] = "R 本体に外部電源を接続して下さい。";

constexpr char kSuccess[] = "W ファームウェアのアップデート終了です。";
constexpr char kFailure[] = "W ファームウェアのアップデートに失敗しました。";

const Lines kPowerOn = {"W 1. 本体に外部電源を接続して下さい。",
                        "R 2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。",
                        "W \"Power On\" ボタンを押下して下さい。"};
const Lines kInsert = {"W 4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。",
                       "W 5. DVR用SDカード挿入口にSDカードを入れて下さい。",
                       "W       \"Update\" ボタンを押下して下さい。"};
const Lines kError = {"R  異常が発生した為、アップデート出来ません。",
                      "R  画面右上の終了ボタンを押下して下さい。"};

Lines Screen(const char* dvr_line, const Lines& instructions, const Lines& buttons) {
    Lines lines = {"W << DVR Firmware Update Tool >>",
                   "R ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。",
                   "W Update Tool : V0.7.00", dvr_line};
    lines.insert(lines.end(), instructions.begin(), instructions.end());
    lines.insert(lines.end(), buttons.begin(), buttons.end());
    return lines;
}

struct StepScreen {
    int step;
    Lines lines;
};

const StepScreen kScreens[] = {
    {-1, Screen(kReading, kPowerOn, {"W Power On"})},
    {0, Screen(kReading,
               {"W 3.“Next” ボタンを押下して下さい。",
                "W  DVR用SDカード挿入口にSDカードが入っている場合、",
                "W  Nextボタンは表示されません。"},
               {"W Next"})},
    {1, Screen(kReading, kInsert, {})},
    {2,
     Screen("W DVR :",
            {"W ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。",
             "W Update Percent : 5%",
             "W ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。",
             "W ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。"},
            {})},
    {3, Screen("W DVR :", {"W 6. しばらくお待ち下さい。"}, {})},
    {4, Screen("W DVR :",
               {"R 7. DVR用SDカード挿入口からSDカードを抜いて下さい。",
                "W       \"Next\" ボタンを押下して下さい。"},
               {"W Next"})},
    {5, Screen(kReading, {kFailure, "W 画面右上の終了ボタンを押下して下さい。"}, {})},
    {6, Screen(kReading,
               {"W Please make sure DVR Firmware is correct.",
                "W 画面右上の終了ボタンを押下して下さい。",
                "W To continue to upgrade, please re-open the program."},
               {})},
};

class StepScreens : public testing::TestWithParam<StepScreen> {};
INSTANTIATE_TEST_SUITE_P(Step, StepScreens, testing::ValuesIn(kScreens),
                         [](const testing::TestParamInfo<StepScreen>& row) {
                             return std::to_string(row.param.step + 1) + "of8";
                         });

// What stands there; what an offline supply makes of it; and that its return starts all over.
TEST_P(StepScreens, StandAndGiveWayToTheOfflineScreen) {
    const int step = GetParam().step;
    const std::uint32_t background = step == -1 ? 0 : kKey;
    const Lines fixed(GetParam().lines.begin(), GetParam().lines.begin() + 4);
    WizardBench bench;
    bench.Start();
    const platform::gdi::Surface first = bench.Screen();
    bench.GoTo(step);
    EXPECT_EQ(bench.Lines(), GetParam().lines);
    EXPECT_EQ(bench.PixelAt(kFreePlace.x, kFreePlace.y), background);
    EXPECT_EQ(bench.Buttons() == "X", step >= 5);

    bench.SetAcLine(0);
    Lines offline = fixed;
    offline.push_back(kOffline);
    EXPECT_EQ(bench.Lines(), offline);
    EXPECT_EQ(bench.PixelAt(kFreePlace.x, kFreePlace.y), background);
    EXPECT_EQ(bench.Buttons(), step >= 5 ? "X" : "");
    EXPECT_EQ(bench.Step(), step);
    EXPECT_EQ(bench.TakeLog("MSG_POWER_STATUS").back(),
              "\t''MSG_POWER_STATUS''( 00000000, 00000001 ) Received.");

    bench.TakeFrames();
    bench.Card(0);
    bench.RunFor(10ms);
    EXPECT_EQ(bench.TakeFrames(), "802E");
    EXPECT_EQ(bench.TakeLog("CMainFrame::StorageCardStatus"), Lines());
    // A percent is seen all the same, but puts no text up.
    bench.Percent(6);
    bench.RunFor(300ms);
    EXPECT_EQ(bench.Step(), step == 3 ? 3 : 2);
    EXPECT_EQ(bench.Lines(), offline);

    bench.SetAcLine(1);
    EXPECT_EQ(bench.Step(), -1);
    EXPECT_TRUE(std::ranges::equal(bench.Screen().pixels(), first.pixels()));
    EXPECT_EQ(bench.TakeLog("CMainFrame::OnPowerStatus"),
              Lines{"\tCMainFrame::OnPowerStatus, AC_LINE_ONLINE"});
}

TEST(Screens, StartOfflineWhenTheSupplyIs) {
    WizardBench bench;
    bench.platform.board.supply.ac_line_status = 0;
    bench.Start();
    EXPECT_EQ(bench.Instructions(), Lines{kOffline});
    EXPECT_EQ(bench.Buttons(), "");
    bench.SetAcLine(1);
    EXPECT_EQ(bench.Lines(), kScreens[0].lines);
}

TEST(Screens, WithoutACardReportAreTheErrorScreenUntilOneComes) {
    WizardBench bench;
    bench.Start();
    bench.Tap("Power On");
    bench.Tap("OK");
    bench.RunFor(6500ms);
    EXPECT_EQ(bench.Instructions(), kError);
    EXPECT_EQ(bench.Buttons(), "X");
    // What an earlier screen set stays: the red of line 3, and the close button.
    bench.Card(0);
    bench.RunFor(20ms);
    EXPECT_EQ(bench.Instructions(), (Lines{"W 3.“Next” ボタンを押下して下さい。",
                                           "W  DVR用SDカード挿入口にSDカードが入っている場合、",
                                           "R  Nextボタンは表示されません。"}));
    EXPECT_EQ(bench.Buttons(), "Next X");
}

TEST(Screens, KeepTheNoticeUntilAPercentOrTheSupplyTakesItAway) {
    WizardBench bench;
    bench.GoTo(1);
    bench.Command(IDC_BTN_UPDATE);
    bench.RunFor(4100ms);
    Lines with_notice = {kImageMissing};
    with_notice.insert(with_notice.end(), kInsert.begin(), kInsert.end());
    EXPECT_EQ(bench.Instructions(), with_notice);
    bench.Card(1);
    bench.RunFor(20ms);
    EXPECT_EQ(bench.Instructions(), with_notice);
    bench.Percent(9);
    bench.RunFor(20ms);
    EXPECT_TRUE(bench.Shows("Update Percent : 9%"));
    EXPECT_EQ(bench.Instructions().size(), 4U);
    bench.Percent(0);
    bench.RunFor(20ms);
    EXPECT_EQ(bench.Instructions(), with_notice);
    bench.SetAcLine(0);
    bench.SetAcLine(1);
    EXPECT_EQ(bench.Instructions(), kPowerOn);
}

TEST(Screens, ShowTheVersionWhenItsSecondOrFifthCharacterIsThere) {
    using namespace std::string_view_literals;
    constexpr std::string_view kDate = "14.09.01.V";
    struct {
        std::string_view characters;
        const char* shown;
    } const rows[] = {
        {"1.02.03", "W DVR : V1.02.03"},
        {"9\0\0\0\0\0\0"sv, kReading},
        {"9.\0\0\0\0\0"sv, "W DVR : V9."},
        {"90000", "W DVR : V0.01.00"},
    };
    for (const int step : {0, 1, 5, 6}) {
        WizardBench bench;
        bench.GoTo(step);
        for (const auto& row : rows) {
            bench.Version(std::string(kDate) + std::string(row.characters));
            bench.RunFor(20ms);
            EXPECT_EQ(bench.Lines()[3], row.shown);
            if (step == 5) {
                EXPECT_EQ(bench.Instructions()[0], row.shown == kReading ? kFailure : kSuccess);
            }
        }
    }
    // Painting forgets it before step 4, pressing Next there too.
    for (const int step : {-1, 2, 3, 4}) {
        for (const bool presses : {false, true}) {
            WizardBench bench;
            bench.GoTo(step);
            bench.Version("14.09.01.V1.02.03");
            bench.RunFor(20ms);
            EXPECT_EQ(bench.Lines()[3], step == -1 ? kReading : "W DVR :");
            if (step != 4)
                continue;
            if (presses)
                bench.Tap("Next");
            bench.RunFor(2500ms);
            bench.Running(DVR_RUNNING_STATE_NORMAL);
            bench.RunFor(2100ms);
            EXPECT_EQ(bench.Instructions()[0], presses ? kFailure : kSuccess);
        }
    }
}

TEST(Screens, TakeAnUnknownSupplyForOnline) {
    WizardBench bench;
    bench.GoTo(0);
    bench.SetAcLine(0);
    bench.SetAcLine(255);
    EXPECT_EQ(bench.Instructions(), Lines{kOffline}) << "not painted";
    bench.Card(0);
    bench.RunFor(20ms);
    EXPECT_EQ(bench.Instructions()[0], "R 3.“Next” ボタンを押下して下さい。") << "its colour stays";
    EXPECT_EQ(bench.Buttons(), "Next");
    bench.SetAcLine(1);
    EXPECT_EQ(bench.Step(), -1);
}

// A full-width character is twice the font's width.
TEST(Screens, GiveLinesTheirSize) {
    struct {
        int step;
        const char* text;
        int half_widths;  // to the end of the ink
        int width, middle;
    } const rows[] = {
        {1, "5. DVR用SDカード挿入口にSDカードを入れて下さい。", 50, 9, 235},
        {1, "4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", 49, 9, 175},
        {0, "3.“Next” ボタンを押下して下さい。", 33, 12, 175},
        {4, "7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 51, 13, 235},
        {5, "ファームウェアのアップデートに失敗しました。", 44, 15, 235},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WizardBench bench;
        bench.GoTo(row.step);
        const RECT box = bench.Find(row.text).value().box;
        EXPECT_NEAR(box.right - box.left, row.half_widths * row.width, row.width * 5);
        EXPECT_NEAR((box.top + box.bottom) / 2.0, row.middle, 5);
        EXPECT_NEAR(box.left, 50, row.width);
    }
}

TEST(Screens, ReplaceMissingImagesByGreyBoxes) {
    WizardBench bench;
    bench.Hide(RT_BITMAP, 202);
    bench.Hide(RT_BITMAP, 203);
    bench.Start();
    EXPECT_EQ(
        bench.TakeLog("LoadImage"),
        Lines(2, "\tCMainFrame::OnCreate, LoadImage() fail!!!, ErrorCode(1813), MainFrm.cpp(#)"));
    EXPECT_EQ(bench.PixelAt(420, 410), kGrey);
    EXPECT_TRUE(bench.Tap("Power On"));
    EXPECT_EQ(std::ranges::count(bench.platform.board.lines(),
                                 L"[Tolvane.exe] \tCNotify::OnInitDialog, LoadImage() fail!!!, "
                                 L"ErrorCode(1813), CNotify.cpp(45)"),
              1);
    EXPECT_EQ(bench.PixelAt(620, 410), kGrey);
    EXPECT_TRUE(bench.Tap("OK"));
    bench.RunFor(6500ms);
    EXPECT_EQ(bench.PixelAt(725, 12), kGrey);
    bench.TapAt(757, 26);
    bench.WaitForEnd();
}

TEST(Screens, GoWithoutAVersionResource) {
    for (const bool hidden : {true, false}) {
        testing::internal::CaptureStdout();
        WizardBench bench;
        if (hidden)
            bench.Hide(RT_VERSION, 1);
        bench.Start();
        EXPECT_EQ(bench.Lines()[2], hidden ? "W Update Tool : V" : "W Update Tool : V0.7.00");
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  hidden ? "Error in GetFileVersionInfoSize: 1813\n"
                         : "File Version: 0.7.0.0\nProduct Version: 0.7.0.0\n");
    }
}

}  // namespace
}  // namespace tests
