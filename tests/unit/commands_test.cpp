#include <gtest/gtest.h>

#include <algorithm>

#include "tests/rig/wizard_run.h"
#include "unit/commands/unit_commands.h"

// Commands in, what the unit's edges tell out.

namespace tests {
namespace {

using namespace std::chrono_literals;
using namespace unit;

class Commands : public testing::Test {
  protected:
    Commands() {
        subscription_ = run_.unit().events().Listen(
            [this](const TimedEvent& timed) { events_.push_back(timed.event); });
    }
    // The rig runs in simulated time: one thread at a time, so the list needs no lock.
    template <class Kind, class Test>
    bool Told(Test test) const {
        return std::ranges::any_of(events_, [&](const Event& event) {
            const Kind* const kind = std::get_if<Kind>(&event);
            return kind && test(*kind);
        });
    }
    control::Outcome Follow(const char* line) { return UnitCommands().Follow(operator_, line); }
    std::string Do(const char* line) {
        const control::Outcome outcome = Follow(line);
        run_.RunUntil([this] { return !operator_.busy(); }, 5s);
        return outcome.done ? "" : outcome.text;
    }

    WizardRun run_;
    Operator operator_{run_.unit(), ""};
    std::vector<Event> events_;
    EventHub::Subscription subscription_;
};

TEST_F(Commands, WalkToTheUpdateAndTellEveryEdge) {
    ASSERT_TRUE(run_.WaitForText(L"Power On", 5s));
    EXPECT_EQ(Do("tap 'Power On'"), "");
    ASSERT_TRUE(run_.WaitForText(L"OK", 5s));
    EXPECT_EQ(Do("press OK"), "");
    EXPECT_EQ(Do("release"), "");
    ASSERT_TRUE(run_.WaitForText(L"Next", 15s));
    run_.RunFor(3s);
    EXPECT_EQ(Do("tap Next for 300ms"), "");
    run_.RunFor(6s);
    EXPECT_EQ(Do("card with image 15.01.01.V2.00.07"), "");
    ASSERT_TRUE(run_.WaitForText(L"Update", 5s));
    EXPECT_EQ(Do("tap at 400 440"), "");
    EXPECT_EQ(Do("battery 40 flag 2"), "");
    EXPECT_EQ(Do("power off"), "");
    run_.RunFor(5s);

    EXPECT_TRUE(Told<DriverCalled>([](const DriverCalled& call) {
        return call.driver == L"DVR1:" && call.call == DriverCalled::Call::kControl &&
               call.code == 0x0881 && call.input == std::vector{std::byte{2}} &&
               call.error == ERROR_SUCCESS;
    }));
    EXPECT_TRUE(Told<DriverCalled>([](const DriverCalled& call) {
        return call.driver == L"SCA0:" && call.call == DriverCalled::Call::kClose;
    }));
    EXPECT_TRUE(Told<LineBytes>(
        [](const LineBytes& piece) { return piece.direction == Direction::kToDvr; }));
    EXPECT_TRUE(Told<LineBytes>(
        [](const LineBytes& piece) { return piece.direction == Direction::kToUnit; }));
    EXPECT_TRUE(Told<DvrReset>([](const DvrReset&) { return true; }));
    EXPECT_TRUE(Told<CardMoved>([](const CardMoved& card) { return card.in; }));
    EXPECT_TRUE(Told<SupplyChanged>([](const SupplyChanged& change) {
        return change.supply.ac_line_status == 0 && change.supply.battery_life_percent == 40;
    }));
    EXPECT_TRUE(Told<BroadcastPosted>([](const BroadcastPosted& broadcast) {
        return broadcast.name == L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_" &&
               broadcast.wparam == 0 && broadcast.lparam == 2;
    }));
    EXPECT_TRUE(Told<LineLogged>([](const LineLogged& line) {
        return line.text.find("AC_LINE_OFFLINE") != std::string::npos;
    }));
    EXPECT_EQ(
        std::ranges::count_if(
            events_, [](const Event& event) { return std::holds_alternative<FingerMoved>(event); }),
        8);
}

TEST_F(Commands, RefuseWhatCannotBeDoneNow) {
    ASSERT_TRUE(run_.WaitForText(L"Power On", 5s));
    const std::pair<const char*, const char*> cases[] = {
        {"release", "the finger is not on the screen; press first"},
        {"move to 1 1", "the finger is not on the screen; press first"},
        {"card out", "there is no card to take out"},
        {"card in /no/such/folder", "/no/such/folder is not a folder"},
        {"wake", "the unit is awake"},
        {"fault driver XYZ1: missing",
         "there is no driver XYZ1:; allowed is one of COM9:, DVR1:, SCA0:"},
        {"screenshot /no/such/folder/x.png", "/no/such/folder/x.png: No such file or directory"},
    };
    for (const auto& [line, problem] : cases)
        EXPECT_EQ(Do(line), problem) << line;
    const std::string missing = Do("tap Nowhere");
    EXPECT_TRUE(missing.starts_with("there is no Nowhere on the screen; there is ")) << missing;
    EXPECT_NE(missing.find("\"Power On\""), std::string::npos) << missing;
}

TEST_F(Commands, DriverFaultsReachTheProgramAndEnd) {
    ASSERT_TRUE(run_.WaitForText(L"Power On", 5s));
    EXPECT_EQ(Do("fault driver DVR1: refuses error 5"), "");
    EXPECT_EQ(Do("fault driver SCA0: late 30s"), "");
    EXPECT_EQ(Do("tap 'Power On'"), "");
    run_.RunFor(1s);
    EXPECT_EQ(Do("tap OK"), "");
    // The scaler's client tries for twelve seconds.
    run_.RunFor(16s);
    EXPECT_TRUE(run_.Logged("CMainFrame::Reset_DVR, DeviceIoControl() fail!!!, ErrorCode(5)"));
    EXPECT_TRUE(run_.Logged("Mstar_C4_Scaler_Init() fail!!!, ErroCode("));
    EXPECT_EQ(run_.unit().drivers().Faults(), std::vector<std::string>{"SCA0: appears late"});
    run_.RunFor(16s);
    EXPECT_TRUE(run_.unit().drivers().Faults().empty());
    EXPECT_EQ(Do("tap Next"), "");
    run_.RunFor(6s);
    EXPECT_TRUE(run_.unit().scaler().state().VideoShows());
}

TEST_F(Commands, FaultTheLineAndTellIt) {
    EXPECT_EQ(Follow("fault line corrupt checksum of FW_Upgrade_Version indications").text,
              "fault 1: corrupt checksum of FW_Upgrade_Version indications");
    EXPECT_EQ(Follow("fault line drop frames to-unit").text, "fault 2: drop frames to-unit");
    EXPECT_EQ(Do("fault line drop Mode frames"),
              "'Mode' is no command of the DVR; allowed is a name such as FW_Upgrade_Version, or "
              "a number such as 0x2E");
    run_.RunFor(3s);
    EXPECT_TRUE(Told<FaultApplied>([](const FaultApplied& fault) {
        return fault.text == "fault 2 (drop frames to-unit): IND DVR_RunningState, 1 so far";
    }));
    EXPECT_FALSE(run_.Logged("DVR_RunningState_IND"));
    EXPECT_EQ(Do("fault line clear 1"), "");
    EXPECT_EQ(Do("fault line clear 1"), "there is no fault 1 on the line; allowed is one of 2");
    EXPECT_TRUE(Follow("fault line list").text.starts_with("fault 2: drop frames to-unit, applied"))
        << Follow("fault line list").text;
    EXPECT_EQ(Do("line inject A55A20801100010001B1 to-unit"), "");
    run_.RunFor(1s);
    EXPECT_TRUE(run_.Logged("DVR_MODE_VIDEO")) << "no fault applies to injected bytes";
    EXPECT_EQ(Do("line unplug"), "");
    EXPECT_FALSE(run_.unit().dvr().plugged());
    EXPECT_EQ(Do("line plug"), "");
    EXPECT_EQ(Do("fault line clear"), "");
    EXPECT_EQ(Follow("fault line list").text, "");
}

}  // namespace
}  // namespace tests
