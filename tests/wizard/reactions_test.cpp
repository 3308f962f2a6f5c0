#include <gtest/gtest.h>

#include <algorithm>

#include "tests/bench/wizard_bench.h"
#include "wizard/WizardModel.h"

namespace tests {
namespace {

using Act = std::function<void(WizardBench&)>;
using Log = std::vector<std::string>;

constexpr auto kSoon = 2ms;

Act Command(UINT id) {
    return [id](WizardBench& bench) { bench.Command(id); };
}
Act Card(BYTE status) {
    return [status](WizardBench& bench) { bench.Card(status); };
}
Act Normal() {
    return [](WizardBench& bench) { bench.Running(DVR_RUNNING_STATE_NORMAL); };
}
Act Timer(UINT id) {
    return [id](WizardBench& bench) { bench.Post(WM_TIMER, id); };
}
Act Percent(BYTE percent) {
    return [percent](WizardBench& bench) { bench.Percent(percent); };
}
Act HeldPercent(BYTE percent) {
    return [percent](WizardBench& bench) { bench.HoldPercent(percent); };
}
Act Later(std::chrono::milliseconds delay, const Act& act) {
    return [=](WizardBench& bench) { bench.After(delay, [=, &bench] { act(bench); }); };
}
// One after the other, each before the next.
Act InTurn(const std::vector<Act>& acts) {
    return [acts](WizardBench& bench) {
        for (const Act& act : acts) {
            act(bench);
            bench.RunFor(kSoon);
        }
    };
}

constexpr char kOut[] = "\tCMainFrame::StorageCardStatus, Percent:0, DVR_STORAGE_CARD_PLUG_OUT";
constexpr char kIn[] = "\tCMainFrame::StorageCardStatus, Percent:0, DVR_STORAGE_CARD_PLUG_IN";
constexpr char kReset[] = "\tCMainFrame::OnXCommand, Reset";

std::string NormalLine(int step) {
    return "\tCMainFrame::DVR_RunningState, 2, " + std::to_string(step) +
           ", DVR_RUNNING_STATE_NORMAL";
}

struct Reaction {
    const char* name;
    int step;
    Act act;
    // Two and a half seconds later, but for an Update press, which takes five.
    int step_after;
    const char* buttons;
    const char* frames;
    std::size_t resets;
    bool video;
    Log log;
};

const UINT kNext = IDC_BTN_NEXT;
const UINT kUpdate = IDC_BTN_UPDATE;
const UINT kSuspend = IDC_BTN_SUSPEND;

// One row a line, whatever its length.
// clang-format off
const Reaction kReactions[] = {
    {"Next", -1, Command(kNext), -1, "OK", "", 0, false, {}},
    {"Update", -1, Command(kUpdate), -1, "", "", 0, false, {}},
    {"Suspend", -1, Command(kSuspend), -1, "", "", 0, false, {}},
    {"unknown command", -1, Command(4711), -1, "Power On", "", 0, false, {}},
    {"card out", -1, Card(0), -1, "Power On", "802E", 0, false, {kOut}},
    {"card in", -1, Card(1), -1, "Power On", "802E", 0, false, {kIn}},
    {"normal", -1, Normal(), -1, "Power On", "802E 8026", 0, false, {NormalLine(-1)}},
    {"notify timer", -1, Timer(257), -1, "Power On", "", 0, false, {}},
    {"card-out timer", -1, InTurn({Card(0), Timer(258)}), -1, "Power On", "802E", 0, false, {kOut}},
    {"card-in timer", -1, InTurn({Card(1), Timer(259)}), -1, "Power On", "802E", 0, false, {kIn}},
    {"video timer", -1, Timer(260), -1, "", "", 0, true, {}},
    {"percent", -1, Percent(5), 2, "", "", 0, false, {}},

    {"Next", 0, Command(kNext), 1, "", "", 1, true, {}},
    {"Update, card out", 0, Command(kUpdate), 1, "", "", 1, true, {}},
    {"Update, card in", 0, InTurn({Card(1), Command(kUpdate)}), 0, "", "802E", 0, false, {kIn}},
    {"Suspend", 0, Command(kSuspend), 0, "", "", 0, false, {}},
    {"card in", 0, Card(1), 0, "", "802E", 0, false, {kIn}},
    {"card in and out", 0, InTurn({Card(1), Card(0)}), 0, "Next", "802E 802E", 0, false, {kIn, kOut}},
    {"normal", 0, Normal(), 0, "Next", "802E 8026", 0, false, {NormalLine(0)}},
    {"notify timer", 0, Timer(257), 0, "Next", "", 0, false, {}},
    {"card-out timer, card out", 0, InTurn({Command(kSuspend), Timer(258)}), 0, "Next", "", 0, false, {}},
    {"card-out timer, card in", 0, InTurn({Card(1), Timer(258)}), 0, "", "802E", 0, false, {kIn}},
    {"card-out timer polls", 0, InTurn({Card(1), Later(300ms, Card(0)), Later(301ms, Command(kSuspend))}), 0, "Next", "802E 802E", 0, false, {kIn, kOut}},
    {"card-out timer stops", 0, InTurn({Timer(258), Later(300ms, Command(kSuspend))}), 0, "", "", 0, false, {}},
    {"card-in timer", 0, InTurn({Card(1), Timer(259)}), 0, "", "802E", 0, false, {kIn}},
    {"video timer, card out", 0, Timer(260), 0, "", "", 0, true, {}},
    {"video timer, card in", 0, InTurn({Card(1), Timer(260)}), 0, "", "802E", 0, false, {kIn}},
    {"percent", 0, Percent(5), 2, "", "", 0, false, {}},

    {"Next", 1, Command(kNext), 1, "", "", 0, false, {}},
    {"Update, nothing comes", 1, Command(kUpdate), 1, "", "", 1, false, {kReset}},
    {"Update, an image but no percent", 1, InTurn({[](WizardBench& bench) { bench.Indicate(0x002E, {0, '1'}); }, Command(kUpdate)}), 5, "X", "", 1, false, {kReset}},
    {"Update, percent comes late", 1, InTurn({Command(kUpdate), Later(3900ms, Percent(7))}), 2, "", "", 1, false, {kReset}},
    {"Update, percent comes too late", 1, InTurn({Command(kUpdate), Later(4050ms, Card(1))}), 1, "Update", "802E", 1, false, {kReset, kIn}},
    {"Update, percent is there", 1, InTurn({HeldPercent(7), Command(kUpdate)}), 2, "", "", 0, false, {}},
    {"Suspend", 1, InTurn({Card(1), Command(kSuspend)}), 1, "", "802E", 0, false, {kIn}},
    {"card in", 1, Card(1), 1, "Update", "802E", 0, false, {kIn}},
    {"card in and out", 1, InTurn({Card(1), Card(0)}), 1, "", "802E 802E", 0, false, {kIn, kOut}},
    {"normal, card out", 1, Normal(), 1, "", "802E 8026", 0, false, {NormalLine(1)}},
    {"normal, card in", 1, InTurn({Card(1), Command(kSuspend), Normal()}), 1, "Update", "802E 802E 8026", 0, false, {kIn, NormalLine(1)}},
    {"card-in timer polls", 1, InTurn({Normal(), Later(300ms, Card(1)), Later(301ms, Command(kSuspend))}), 1, "Update", "802E 8026 802E", 0, false, {NormalLine(1), kIn}},
    {"card-in timer stops", 1, InTurn({Card(1), Normal(), Later(300ms, Command(kSuspend))}), 1, "", "802E 802E 8026", 0, false, {kIn, NormalLine(1)}},
    {"card-out timer", 1, InTurn({Card(1), Timer(258)}), 1, "Update", "802E", 0, false, {kIn}},
    {"notify timer", 1, Timer(257), 1, "", "", 0, false, {}},
    {"video timer", 1, InTurn({Card(1), Timer(260)}), 1, "", "802E", 0, true, {kIn}},
    {"percent", 1, InTurn({Card(1), Percent(5)}), 2, "Update", "802E", 0, false, {kIn}},

    {"Next", 2, Command(kNext), 2, "", "", 0, false, {}},
    {"Update", 2, Command(kUpdate), 2, "", "", 0, false, {}},
    {"Suspend", 2, Command(kSuspend), 2, "", "", 0, false, {}},
    {"card out", 2, Card(0), 2, "", "802E", 0, false, {kOut}},
    {"card in", 2, Card(1), 2, "", "802E", 0, false, {kIn}},
    {"normal", 2, Normal(), 2, "", "802E 8026", 0, false, {NormalLine(2)}},
    {"notify timer", 2, Timer(257), 2, "", "", 0, false, {}},
    {"video timer", 2, Timer(260), 2, "", "", 0, false, {}},
    {"percent back to 0", 2, Percent(0), 1, "", "", 0, false, {}},

    {"Next", 3, InTurn({Card(0), Command(kNext)}), 3, "Next", "802E", 0, false, {kOut}},
    {"Update", 3, Command(kUpdate), 3, "", "", 0, false, {}},
    {"Suspend", 3, InTurn({Card(0), Command(kSuspend)}), 3, "", "802E", 0, false, {kOut}},
    {"card out", 3, Card(0), 3, "Next", "802E", 0, false, {kOut}},
    {"card in", 3, Card(1), 3, "", "802E", 0, false, {kIn}},
    {"normal", 3, Normal(), 3, "", "802E 8026", 0, false, {NormalLine(3)}},
    {"notify timer", 3, Timer(257), 3, "OK", "", 0, false, {}},
    {"video timer", 3, Timer(260), 3, "", "", 0, false, {}},
    {"percent", 3, Percent(5), 3, "", "", 0, false, {}},

    {"Next", 4, InTurn({HeldPercent(5), Command(kNext)}), 4, "", "", 1, true, {}},
    {"Update", 4, Command(kUpdate), 4, "Next", "", 0, false, {}},
    {"Suspend", 4, Command(kSuspend), 4, "", "", 0, false, {}},
    {"card out", 4, Card(0), 4, "Next", "802E", 0, false, {kOut}},
    {"card in", 4, Card(1), 4, "Next", "802E", 0, false, {kIn}},
    {"normal", 4, Normal(), 5, "X", "802E 8026", 0, false, {NormalLine(4)}},
    {"notify timer", 4, Timer(257), 4, "Next", "", 0, false, {}},
    {"video timer", 4, Timer(260), 4, "", "", 0, true, {}},
    {"percent", 4, Percent(5), 2, "", "", 0, false, {}},

    {"Next", 5, Command(kNext), 5, "X", "", 0, false, {}},
    {"Update, not at 100", 5, Command(kUpdate), 5, "X", "", 0, false, {}},
    {"card out", 5, Card(0), 5, "X", "802E", 0, false, {kOut}},
    {"normal", 5, Normal(), 5, "X", "802E 8026", 0, false, {NormalLine(5)}},
    {"video timer", 5, Timer(260), 5, "X", "", 0, true, {}},
    {"percent", 5, Percent(5), 2, "X", "", 0, false, {}},

    {"Next", 6, Command(kNext), 6, "X", "", 0, false, {}},
    {"Update", 6, Command(kUpdate), 6, "X", "", 0, false, {}},
    {"Suspend", 6, Command(kSuspend), 6, "X", "", 0, false, {}},
    {"card out", 6, Card(0), 6, "X", "802E", 0, true, {kOut}},
    {"card in", 6, Card(1), 6, "X", "802E", 0, true, {kIn}},
    {"normal", 6, Normal(), 6, "X", "802E 8026", 0, false, {NormalLine(6)}},
    {"video timer", 6, Timer(260), 6, "X", "", 0, true, {}},
    {"percent", 6, Percent(5), 2, "X", "", 0, false, {}},
};
// clang-format on

class AtStep : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Step, AtStep, testing::Range(-1, 7),
                         [](const testing::TestParamInfo<int>& step) {
                             return step.param < 0 ? "PowerOn" : std::to_string(step.param);
                         });

TEST_P(AtStep, ReactsToEveryEvent) {
    for (const Reaction& row : kReactions) {
        if (row.step != GetParam())
            continue;
        SCOPED_TRACE(row.name);
        WizardBench bench;
        bench.GoTo(row.step);
        row.act(bench);
        bench.RunFor(std::string_view(row.name).starts_with("Update,") ? 5s : 2500ms);
        EXPECT_EQ(bench.Step(), row.step_after);
        EXPECT_EQ(bench.Buttons(), row.buttons);
        EXPECT_EQ(bench.TakeFrames(), row.frames);
        EXPECT_EQ(bench.reset->Take(), Log(row.resets, "0881 02"));
        EXPECT_EQ(bench.scaler->Take(), row.video ? WizardBench::kVideoOn : Log());
        EXPECT_EQ(bench.TakeLog("CMainFrame::"), row.log);
    }
}

// A painting takes a held percent to step 2; so it tells what paints and what does not.
TEST(Repainting, HappensForSomeEventsAlone) {
    struct {
        int step;
        Act act;
        bool paints;
    } const rows[] = {
        {-1, Timer(261), true},
        {-1, Normal(), false},
        {-1, Card(0), false},
        {-1, Timer(999), false},
        {0, Normal(), true},
        {0, Card(1), true},
        {1, Normal(), false},
        {1, Card(0), true},
        {4, Card(0), false},
        {4, Command(kSuspend), true},
        {5, Command(kUpdate), true},
        {6, Card(0), true},
        {0, [](WizardBench& bench) { bench.SetAcLine(1); }, false},
        {-1, [](WizardBench& bench) { bench.SetAcLine(0); }, true},
        {-1, [](WizardBench& bench) { bench.SetAcLine(255); }, false},
        {-1, [](WizardBench& bench) { bench.Version("14.09.01.V1.02.03"); }, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        WizardBench bench;
        bench.GoTo(row.step);
        bench.HoldPercent(5);
        row.act(bench);
        bench.RunFor(500ms);
        EXPECT_EQ(bench.Step(), row.paints ? 2 : row.step);
    }
}

TEST(Reports, OfOtherValuesAreLogged) {
    const std::pair<BYTE, const char*> states[] = {{0, "DVR_RUNNING_STATE_INITIALIZING"},
                                                   {1, "DVR_RUNNING_STATE_INIT_OK"},
                                                   {3, "DVR_RUNNING_STATE_REBOOTTING"},
                                                   {4, "DVR_RUNNING_STATE_SHUTDOWNING"},
                                                   {7, "default!!!"},
                                                   {255, "default!!!"}};
    const std::pair<BYTE, const char*> cards[] = {{2, "DVR_STORAGE_CARD_BROKEN"},
                                                  {3, "DVR_STORAGE_CARD_FORMATING"},
                                                  {4, "DVR_STORAGE_CARD_SPACE_FULL_NORMAL_FILE"},
                                                  {5, "DVR_STORAGE_CARD_SPACE_FULL_EVENT_FILE"},
                                                  {6, "DVR_STORAGE_CARD_SPACE_FULL_BOTH_FILE"},
                                                  {7, "default!!!"},
                                                  {255, "default!!!"}};
    WizardBench bench;
    bench.GoTo(4);
    Log log;
    std::string frames;
    for (const auto& [state, name] : states) {
        bench.Running(state);
        log.push_back("\tCMainFrame::DVR_RunningState, " + std::to_string(state) + ", " + name);
        frames += " 802E 8026";
    }
    for (const auto& [card, name] : cards) {
        bench.Indicate(0x0026, {card, 0, 90});
        log.push_back(std::string("\tCMainFrame::StorageCardStatus, Percent:90, ") + name);
        frames += " 802E";
    }
    bench.RunFor(100ms);
    EXPECT_EQ(bench.TakeLog("CMainFrame::"), log);
    EXPECT_EQ(" " + bench.TakeFrames(), frames);
    EXPECT_EQ(bench.Step(), 4);
    EXPECT_EQ(bench.Buttons(), "Next");
}

}  // namespace
}  // namespace tests
