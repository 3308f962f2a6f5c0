#include "dvrsim/commands/dvr_commands.h"
#include "dvrsim/commands/dvr_state.h"
#include "tests/dvrsim/bench.h"

#include <nlohmann/json.hpp>

namespace dvrsim {
namespace {

class DvrCommands : public testing::Test, protected Bench {
  protected:
    DvrCommands() : commands_(Rows()) {}
    static std::vector<DvrTable::Row> Rows() {
        auto rows = DvrRows();
        for (auto& row : DvrFaultRows())
            rows.push_back(row);
        return rows;
    }
    bool Execute(const std::string& line) { return commands_.Execute(dvr, line).done; }

    const DvrTable commands_;
};

TEST_F(DvrCommands, EachFaultIsSetAndEndedAlone) {
    const struct {
        const char* set;
        const char* end;
        Faults faults;
    } cases[] = {
        {"silent on", "silent off", {.silent = true}},
        {"silent-card on", "silent-card off", {.silent_card = true}},
        {"silent-version on", "silent-version off", {.silent_version = true}},
        {"slow 9", "slow 1", {.slow_factor = 9}},
        {"copies 4", "copies 1", {.indication_copies = 4}},
        {"repeat-card 250ms", "repeat-card off", {.card_report_interval = 250ms}},
        {"version \"\"", "no-version", {.reported_version = ""}},
        {"image-version x", "no-image-version", {.reported_image_version = "x"}},
        {"stop-at 0", "stop-at off", {.stop_at_percent = 0}},
        {"stuck-at 57", "stuck-at off", {.stuck_at_percent = 57}},
        {"fail-at 100", "fail-at off", {.fail_at_percent = 100}},
        {"reboot-at 3", "reboot-at off", {.reboot_at_percent = 3}},
        {"jump-back 60 10", "jump-back off", {.jump_back = PercentJump{60, 10}}},
    };
    for (const bool alone : {true, false})
        for (const auto& c : cases) {
            SCOPED_TRACE(c.set);
            EXPECT_TRUE(Execute(std::string("fault dvr ") + c.set));
            if (alone) {
                EXPECT_EQ(dvr.GetFaults(), c.faults);
                EXPECT_TRUE(Execute(std::string("fault dvr ") + c.end));
                EXPECT_EQ(dvr.GetFaults(), Faults());
            }
        }
    EXPECT_EQ(dvr.GetFaults().slow_factor, 9U) << "one takes no other away";
    EXPECT_EQ(StateOf(dvr)["faults"]["jump_back"]["to"], 10);
    EXPECT_TRUE(Execute("fault dvr none"));
    EXPECT_EQ(dvr.GetFaults(), Faults());
    EXPECT_EQ(StateOf(dvr)["faults"]["stop_at"], nullptr);
}

TEST_F(DvrCommands, ActOnTheDvr) {
    EXPECT_FALSE(Execute("dvr reboot")) << "off";
    EXPECT_TRUE(Execute("dvr power on"));
    EXPECT_EQ(StateOf(dvr)["state"], "booting");
    EXPECT_EQ(StateOf(dvr)["card"]["status"], "plug-out");
    EXPECT_EQ(StateOf(dvr)["card"]["image"], nullptr);
    host.Run(2s);
    const std::pair<const char*, std::vector<Sent>> cases[] = {
        {"card report full-event", {{2s, 0x80, 0x26, {5, 0, 100}}}},
        {"dvr indicate 0x802e", {{2s, 0x80, 0x802E, {}}}},
        {"dvr indicate g_sensor 'FF 00'", {{2s, 0x80, 0x29, {0xFF, 0}}}},
        {"dvr firmware V0", {}},
        {"dvr update-time 15s", {}},
        {"dvr power off", {}},
    };
    for (const auto& [line, sent] : cases) {
        host.sent.clear();
        EXPECT_TRUE(Execute(line)) << line;
        EXPECT_EQ(host.sent, sent) << line;
    }
    EXPECT_EQ(dvr.FirmwareVersion(), "V0");
    EXPECT_EQ(dvr.GetTimings().update.least, 14s);
    EXPECT_EQ(dvr.GetTimings().update.most, 16s);
    EXPECT_EQ(dvr.GetState(), Dvr::State::kOff);
}

TEST_F(DvrCommands, RefuseWhatFitsNoFrameWhenTheLineIsRead) {
    const std::string longest(64, 'v');
    const std::pair<std::string, const char*> cases[] = {
        {"dvr firmware " + longest + "v", "at most 64 bytes"},
        {"fault dvr version " + longest + "v", "at most 64 bytes"},
        {"fault dvr image-version " + longest, "at most 63 bytes"},
        {"dvr indicate 0x10 " + std::string(2 * 65, 'A'), "at most 64 bytes"},
        {"dvr indicate 0x10000", "allowed is 0 to 0xFFFF"},
        {"dvr indicate Foo", "allowed is one of DVR_RunningState, DVR_Mode, "},
    };
    for (const auto& [line, why] : cases) {
        std::string problem;
        EXPECT_FALSE(commands_.Read(*control::SplitWords(line, problem), problem)) << line;
        EXPECT_NE(problem.find(why), std::string::npos) << line << ": " << problem;
    }
}

}  // namespace
}  // namespace dvrsim
