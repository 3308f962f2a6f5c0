#include "unit/scenario/scenario_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/rig/wizard_run.h"
#include "tests/support/process.h"
#include "unit/picture/picture_difference.h"

// Scenarios on the whole program and unit, in simulated time.

namespace tests {
namespace {

using namespace std::chrono_literals;
using namespace unit;
namespace fs = std::filesystem;

class Scenarios : public Process {
  protected:
    Scenarios() {
        options_.out = Path("out");
        options_.say = [this](const std::string& line) { said_ += line + "\n"; };
    }

    // Runs it on a unit that goes on from where the one before it left off. The first line of what
    // is wrong, without its place; empty when nothing.
    std::string Run(const std::string& text) {
        std::vector<std::string> problems;
        auto scenario = ReadScenario(text, Path("a.scenario"), problems);
        if (!scenario) {
            ADD_FAILURE() << problems.front();
            return {};
        }
        ScenarioRun run(operator_, std::move(*scenario), options_);
        run.Start();
        platform::kernel::RunHardware([&] { return run.finished(); });
        problem_ = run.problem();
        duration_ = run.duration();
        EXPECT_EQ(run.passed(), problem_.empty());
        const std::string place = Path("a.scenario:");
        if (problem_.empty())
            return {};
        EXPECT_TRUE(problem_.starts_with(place)) << problem_;
        return problem_.substr(place.size(), problem_.find('\n') - place.size());
    }

    std::string said_;
    RunOptions options_;
    WizardRun run_;
    Operator operator_{run_.unit(), ""};
    std::string problem_;
    platform::kernel::Duration duration_{};
};

TEST_F(Scenarios, StatesAreSoOrComeOrStaySoOrFail) {
    ASSERT_EQ(Run("wait button 'Power On' within 5s\nwait 1s"), "");
    const std::pair<const char*, const char*> cases[] = {
        {"expect step power-on\nexpect step -1\nexpect no step 0", ""},
        {"expect step result", "1: expect step result: it is not so; the step is -1, power on"},
        {"wait step updating within 2s",
         "1: wait step updating within 2s: did not come within 2 s; the step is -1, power on"},
        {"expect no button 'Power On'", "1: expect no button \"Power On\": it is so"},
        {"wait no button 'Power On' within 1s",
         "1: wait no button \"Power On\" within 1s: was still so after 1 s"},
        {"expect text '<< DVR Firmware Update Tool >>'\nexpect text starting with 'Update Tool'\n"
         "expect no text starting with 'Tool'\n"
         "expect text containing 'Tool : V'\nexpect no text 'Update Tool'\nexpect no button close",
         ""},
        {"expect percent at least 1",
         "1: expect percent at least 1: it is not so; the percent is 0"},
        {"expect program running\nexpect no program ended\nexpect firmware 14.06.12.V1.00.05", ""},
        {"expect program ended with 0",
         "1: expect program ended with 0: it is not so; the program runs"},
        {"expect firmware 15",
         "1: expect firmware 15: it is not so; the DVR runs "
         "14.06.12.V1.00.05"},
        {"tap 'Power On'\nexpect no text OK for 3s", "2: expect no text OK for 3s: came after 0.0"},
        {"expect text OK for 1s\ntap OK\nexpect text OK for 1s",
         "3: expect text OK for 1s: no longer so after 0.0"},
        {"tap Nowhere",
         "1: tap Nowhere: there is no Nowhere on the screen; there is \"<< DVR Firm"},
    };
    for (const auto& [text, problem] : cases) {
        const std::string found = Run(text);
        const std::string wanted = problem;
        EXPECT_EQ(found.substr(0, wanted.size()), wanted) << text;
        EXPECT_EQ(found.empty(), wanted.empty()) << found;
    }
}

TEST_F(Scenarios, WaitsReadOnAndExpectationsLookBack) {
    ASSERT_EQ(
        Run("wait button 'Power On' within 5s\n"
            "fault driver DVR1: refuses error 5\n"
            "tap 'Power On'\nwait text OK within 1s\ntap OK\nwait 8s\n"
            // What came meanwhile is not missed, and is found in its order.
            "wait driver DVR1: opened\nwait driver DVR1: refuses code 0x0881 error 5\n"
            "wait driver DVR1: closed within 1s\n"
            "wait log 'Reset_DVR, DeviceIoControl() fail!!!' within 0s\n"
            "expect log 'Reset_DVR, DeviceIoControl() fail!!!'\n"
            "expect log 'Reset_DVR, DeviceIoControl() fail!!!' times 1\n"
            "battery 30 flag 2\nwait broadcast PowerStatusChange wparam 1 lparam 2 within 1s\n"
            "battery 30 flag 4\nwait broadcast PowerStatusChange lparam 4 within 1s\n"
            "expect broadcast PowerStatusChange times 2\n"
            "expect no broadcast PowerStatusChange lparam 3\n"
            "expect no broadcast PowerStatusChange wparam 0\n"
            "forget\nexpect no log Reset_DVR\nexpect no broadcast Power\n"
            "battery 30 flag 3\nexpect broadcast Power within 1s\nexpect no broadcast Power "
            "for 2s"),
        "");
    const std::pair<const char*, const char*> cases[] = {
        {"battery 30 flag 1\nwait broadcast Power\nwait broadcast Power within 2s",
         "3: wait broadcast Power within 2s: did not come within 2 s; the latest of its kind:"},
        {"battery 30 flag 1\nexpect broadcast Power times 2 within 1s",
         "2: expect broadcast Power times 2 within 1s: did not come within 1 s; it came 1 times; "
         "the latest of its kind:"},
        {"battery 30 flag 1\nwait 1s\nexpect no broadcast Power",
         "3: expect no broadcast Power: it is so; the latest of its kind:"},
        {"battery 30 flag 1\nexpect no broadcast Power for 1s",
         "2: expect no broadcast Power for 1s: came after 0.005 s; the latest of its kind:"},
    };
    for (const auto& [text, problem] : cases)
        EXPECT_EQ(Run(text), problem) << problem_;
    EXPECT_NE(problem_.find("broadcast  _KESTA_Technology,Inc._All_APP_PowerStatusChange_ wparam 1 "
                            "lparam 1\n    on the screen stand "),
              std::string::npos)
        << problem_;
}

TEST_F(Scenarios, SeeFramesAndTheLinesFaults) {
    // "Power On" asks for version and card; the answers carry both.
    EXPECT_EQ(Run("wait button 'Power On' within 5s\nwait 5s\n"
                  "fault line corrupt checksum of StorageCardStatus acknowledgements to-unit\n"
                  "forget\ntap 'Power On'\nwait button OK\ntap OK\nwait step check-card\n"
                  "wait frame query FW_Upgrade_Version request to-dvr payload 00 within 1s\n"
                  "wait frame 0x2E acknowledgement to-unit payload '31 34 2E' within 1s\n"
                  "wait frame damaged StorageCardStatus acknowledgement to-unit within 1s\n"
                  "wait line fault 'ACK StorageCardStatus' within 0s\n"
                  "expect no frame StorageCardStatus acknowledgement to-unit\n"
                  "expect no frame plain FW_Upgrade_Version request to-dvr\n"
                  "expect no frame FW_Upgrade_Version to-unit payload 32\n"
                  "expect no frame FW_Upgrade_Version request to-unit\n"
                  "expect no frame damaged to-dvr"),
              "")
        << problem_;
    EXPECT_EQ(Run("wait frame FW_Upgrade_Version indication to-unit within 1s"),
              "1: wait frame FW_Upgrade_Version indication to-unit within 1s: "
              "did not come within 1 s; the latest of its kind:");
    EXPECT_NE(problem_.find("  frame      to unit  "), std::string::npos) << problem_;
}

TEST_F(Scenarios, PassTimeAndSpeak) {
    ASSERT_EQ(Run("repeat 3\nwait 1.5s\nsay 'so far'\nend"), "");
    EXPECT_EQ(said_, "so far\nso far\nso far\n");
    EXPECT_EQ(duration_, 4500ms);
}

TEST_F(Scenarios, ComparePicturesAndSaveWhatDiffers) {
    options_.pictures = Path("pictures");
    options_.update_screens = true;
    ASSERT_EQ(Run("wait button 'Power On'\nwait 1s\nexpect screen first.png\n"
                  "expect graphics plain.png\npicture a\npicture b"),
              "");
    EXPECT_TRUE(fs::exists(options_.pictures + "/01-a.png"));
    EXPECT_TRUE(fs::exists(options_.pictures + "/02-b.png"));
    options_.update_screens = false;
    EXPECT_EQ(Run("expect screen first.png\nexpect graphics plain.png"), "");

    std::string problem;
    auto picture = ReadPng(Path("first.png"), problem);
    ASSERT_TRUE(picture) << problem;
    picture->pixels[800 * 20 + 30] ^= 0x0000FF;
    picture->pixels[800 * 22 + 29] ^= 0x010000;
    ASSERT_TRUE(WritePng(*picture, Path("other.png"), problem));
    const std::string saved = options_.out + "/a/other-";
    EXPECT_EQ(Run("expect screen other.png"),
              "1: expect screen other.png: 2 pixels differ, from "
              "29,20 to 30,22; see " +
                  saved + "difference.png");
    EXPECT_EQ(ReadPng(saved + "actual.png", problem), ReadPng(Path("first.png"), problem));
    EXPECT_EQ(ReadPng(saved + "expected.png", problem), picture);
    const auto difference = ReadPng(saved + "difference.png", problem);
    ASSERT_TRUE(difference) << problem;
    EXPECT_EQ(std::ranges::count(difference->pixels, 0xFF2020U), 2);
    EXPECT_EQ(difference->At(30, 20), 0xFF2020U);
    for (const char* file : {"failure.txt", "state.json", "screen.png", "debug.log", "events.log"})
        EXPECT_TRUE(fs::exists(options_.out + "/a/" + file)) << file;

    ASSERT_TRUE(WritePng({1, 1, {0}}, Path("small.png"), problem));
    EXPECT_TRUE(Run("expect graphics small.png")
                    .starts_with("1: expect graphics small.png: it is 800 x 480 pixels, expected "
                                 "1 x 1"));
    ASSERT_TRUE(WritePng({4097, 1, std::vector<std::uint32_t>(4097)}, Path("wide.png"), problem));
    EXPECT_EQ(Run("expect screen wide.png"),
              "1: expect screen wide.png: " + Path("wide.png") +
                  ": the picture is 4097 x 1; at most 4096 x 4096 are allowed");
    EXPECT_EQ(Run("expect screen none.png"),
              "1: expect screen none.png: " + Path("none.png: No such file or directory"));
}

TEST_F(Scenarios, StopTellsWhereTheyStood) {
    std::vector<std::string> problems;
    ScenarioRun run(operator_, *ReadScenario("wait 1s\nwait 1min", "b.scenario", problems), {});
    run.Start();
    run_.RunFor(5s);
    EXPECT_FALSE(run.finished());
    EXPECT_EQ(run.position(), 1U);
    run.Stop("interrupted");
    EXPECT_TRUE(run.finished());
    EXPECT_FALSE(run.passed());
    EXPECT_TRUE(run.problem().starts_with("b.scenario:2: wait 1min: interrupted\n"))
        << run.problem();
}

TEST_F(Scenarios, EndWhereTheyCannotRememberMore) {
    platform::kernel::After(1s, [this] {
        for (std::size_t count = 0; count < Happenings::kMost; ++count)
            run_.unit().events().Tell(FaultApplied{});
    });
    EXPECT_EQ(Run("wait 5s"),
              "1: wait 5s: more than 1000000 things have happened; a scenario looks back on no "
              "more");
}

}  // namespace
}  // namespace tests
