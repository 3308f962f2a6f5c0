#include <gtest/gtest.h>

#include "tests/bench/wizard_bench.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

constexpr std::uint32_t kKey = 0x001000;
constexpr std::uint32_t kGrey = 0x7F7F7F;
constexpr POINT kFreePlace = {5, 475};

constexpr char kReading[] = "W DVR : 読み込み中";
constexpr char kMissing[] = "B DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。";
constexpr char kOffline[] = "R 本体に外部電源を接続して下さい。";

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
    {5, Screen(kReading,
               {"W ファームウェアのアップデートに失敗しました。",
                "W 画面右上の終了ボタンを押下して下さい。"},
               {})},
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
    EXPECT_EQ(bench.Lines(), kScreens[0].lines);
    EXPECT_EQ(bench.PixelAt(kFreePlace.x, kFreePlace.y), 0U);
    EXPECT_EQ(bench.Buttons(), "Power On");
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
    Lines with_notice = {kMissing};
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
                EXPECT_EQ(bench.Instructions()[0],
                          row.shown == kReading ? "W ファームウェアのアップデートに失敗しました。"
                                                : "W ファームウェアのアップデート終了です。");
            }
        }
    }
    // Step 4 keeps it for the result, the steps before do not.
    for (const int step : {-1, 2, 3, 4}) {
        WizardBench bench;
        bench.GoTo(step);
        bench.Version("14.09.01.V1.02.03");
        bench.RunFor(20ms);
        EXPECT_EQ(bench.Lines()[3], step == -1 ? kReading : "W DVR :");
        if (step == 4) {
            bench.Running(DVR_RUNNING_STATE_NORMAL);
            bench.RunFor(2100ms);
            EXPECT_EQ(bench.Instructions()[0], "W ファームウェアのアップデート終了です。");
        }
    }
}

// A full-width character is twice the font's width, a letter about the width.
TEST(Screens, GiveTextsTheirSizeAndPlace) {
    struct {
        int step;
        const char* text;
        int half_widths;  // to the end of the ink
        int width, middle;
        int left;  // 0: centred
    } const rows[] = {
        {-1, "1. 本体に外部電源を接続して下さい。", 35, 9, 175, 50},
        {0, "3.“Next” ボタンを押下して下さい。", 33, 12, 175, 50},
        {4, "7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 51, 13, 235, 50},
        {5, "ファームウェアのアップデートに失敗しました。", 44, 15, 235, 50},
        {-1, "ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", 70, 10, 70,
         0},
        {-1, "<< DVR Firmware Update Tool >>", 30, 10, 25, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WizardBench bench;
        bench.GoTo(row.step);
        const auto text = bench.Find(row.text);
        ASSERT_TRUE(text);
        const int expected = row.half_widths * row.width;
        EXPECT_NEAR(text->box.right - text->box.left, expected, expected / 6.0);
        EXPECT_NEAR((text->box.top + text->box.bottom) / 2.0, row.middle, 5);
        if (row.left == 0) {
            EXPECT_NEAR((text->box.left + text->box.right) / 2.0, 400, row.width);
        } else {
            EXPECT_NEAR(text->box.left, row.left, row.width);
        }
    }
}

TEST(Screens, ReplaceMissingImagesByGreyBoxes) {
    const std::string line =
        "\tCMainFrame::OnCreate, LoadImage() fail!!!, ErrorCode(1813), MainFrm.cpp(#)";
    WizardBench bench;
    bench.Hide(RT_BITMAP, 202);
    bench.Hide(RT_BITMAP, 203);
    bench.Start();
    EXPECT_EQ(bench.TakeLog("LoadImage"), (Lines{line, line}));
    EXPECT_EQ(bench.PixelAt(420, 410), kGrey);
    EXPECT_TRUE(bench.Shows("Power On"));
    bench.Tap("Power On");
    EXPECT_EQ(bench.PixelAt(620, 410), kGrey);
    bench.Tap("OK");
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

TEST(Screens, PressedButtonsHaveTheirSecondFace) {
    WizardBench bench;
    bench.Start();
    const std::uint32_t face = bench.PixelAt(430, 411);
    EXPECT_NE(face, 0U);
    bench.Press(500, 440);
    EXPECT_EQ(bench.PixelAt(430, 411), 0U);
    EXPECT_TRUE(bench.Shows("Power On"));
    bench.Release(300, 440);
    EXPECT_EQ(bench.PixelAt(430, 411), face);
    EXPECT_EQ(bench.Buttons(), "Power On") << "released outside";
}

}  // namespace
}  // namespace tests
