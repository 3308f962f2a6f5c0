#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

#include "dvrsim/commands/dvr_rows.h"
#include "dvrsim/commands/dvr_state.h"

#include <nlohmann/json.hpp>

namespace dvrsim {
namespace {

using namespace std::chrono_literals;

// A host that keeps what the DVR sends and never runs what it plans.
struct StillHost final : Host {
    std::chrono::microseconds Now() const override { return {}; }
    std::uint64_t After(std::chrono::microseconds, std::function<void()> action) override {
        planned.push_back(std::move(action));
        return planned.size();
    }
    void Cancel(std::uint64_t) override {}
    void Transmit(std::span<const std::uint8_t> bytes) override {
        sent.insert(sent.end(), bytes.begin(), bytes.end());
    }

    std::vector<std::function<void()>> planned;
    std::vector<std::uint8_t> sent;
};

struct Desk {
    StillHost host;
    Dvr dvr{host};
};

const DvrTable& Commands() {
    static const DvrTable table([] {
        auto rows = DvrRows();
        for (auto& row : DvrFaultRows())
            rows.push_back(row);
        return rows;
    }());
    return table;
}

TEST(DvrCommands, EachFaultIsSetAndEndedAlone) {
    const struct {
        const char* set;
        const char* end;
        Faults faults;
    } cases[] = {
        {"silent on", "silent off", {.silent = true}},
        {"silent-card on", "silent-card off", {.silent_card = true}},
        {"silent-version on", "silent-version off", {.silent_version = true}},
        {"slow 9", "slow 1", {.slowness = 9}},
        {"copies 4", "copies 1", {.indication_copies = 4}},
        {"repeat-card 250ms", "repeat-card off", {.card_report_interval = 250ms}},
        {"version \"\"", "no-version", {.version_answer = ""}},
        {"image-version x", "no-image-version", {.image_version_report = "x"}},
        {"stop-at 0", "stop-at off", {.stop_at_percent = 0}},
        {"stuck-at 57", "stuck-at off", {.stuck_at_percent = 57}},
        {"fail-at 100", "fail-at off", {.fail_at_percent = 100}},
        {"reboot-at 3", "reboot-at off", {.reboot_at_percent = 3}},
        {"jump-back 60 10", "jump-back off", {.jump_back = PercentJump{60, 10}}},
    };
    Desk desk;
    for (const bool alone : {true, false}) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.set);
            EXPECT_TRUE(Commands().Follow(desk.dvr, std::string("fault dvr ") + c.set).done);
            if (alone) {
                EXPECT_EQ(desk.dvr.GetFaults(), c.faults);
                EXPECT_TRUE(Commands().Follow(desk.dvr, std::string("fault dvr ") + c.end).done);
                EXPECT_EQ(desk.dvr.GetFaults(), Faults());
            }
        }
    }
    EXPECT_EQ(desk.dvr.GetFaults().slowness, 9U) << "one takes no other away";
    EXPECT_TRUE(Commands().Follow(desk.dvr, "fault dvr none").done);
    EXPECT_EQ(desk.dvr.GetFaults(), Faults());
}

TEST(DvrCommands, ActOnTheDvr) {
    using Bytes = std::vector<std::uint8_t>;
    Desk desk;
    EXPECT_FALSE(Commands().Follow(desk.dvr, "dvr reboot").done) << "off";
    EXPECT_TRUE(Commands().Follow(desk.dvr, "dvr power on").done);
    EXPECT_EQ(desk.dvr.GetState(), Dvr::State::kBooting);
    desk.host.planned[0]();
    const std::pair<const char*, Bytes> cases[] = {
        {"card report full-event", {0xA5, 0x5A, 0x80, 0, 0x26, 0, 3, 5, 0, 0x64, 0x02, 0x11}},
        {"dvr indicate 0x802e", {0xA5, 0x5A, 0x80, 0x80, 0x2E, 0, 0, 0x02, 0x2D}},
        {"dvr indicate g_sensor 'FF 00'", {0xA5, 0x5A, 0x80, 0, 0x29, 0, 2, 0xFF, 0, 0x02, 0xA9}},
        {"dvr firmware V0", {}},
        {"dvr update-time 15s", {}},
        {"dvr power off", {}},
    };
    for (const auto& [line, sent] : cases) {
        desk.host.sent.clear();
        EXPECT_TRUE(Commands().Follow(desk.dvr, line).done) << line;
        EXPECT_EQ(desk.host.sent, sent) << line;
    }
    EXPECT_EQ(desk.dvr.FirmwareVersion(), "V0");
    EXPECT_EQ(desk.dvr.GetTimings().update.least, 14s);
    EXPECT_EQ(desk.dvr.GetTimings().update.most, 16s);
    EXPECT_EQ(desk.dvr.GetState(), Dvr::State::kOff);
}

TEST(DvrCommands, RefuseWhatFitsNoFrameWhenTheLineIsRead) {
    const std::string longest(64, 'v');
    const std::string bytes(2 * 65, 'A');
    const std::pair<std::string, const char*> cases[] = {
        {"dvr firmware " + longest + "v", "at most 64 bytes"},
        {"fault dvr version " + longest + "v", "at most 64 bytes"},
        {"fault dvr image-version " + longest, "at most 63 bytes"},
        {"dvr indicate 0x10 " + bytes, "at most 64 bytes"},
        {"dvr indicate 0x10000", "allowed is 0 to 0xFFFF"},
        {"dvr indicate Foo", "allowed is one of DVR_RunningState, DVR_Mode, "},
    };
    for (const auto& [line, why] : cases) {
        SCOPED_TRACE(line);
        std::string problem;
        const auto words = control::SplitWords(line, problem);
        EXPECT_FALSE(Commands().Read(*words, problem));
        EXPECT_NE(problem.find(why), std::string::npos) << problem;
    }
}

TEST(DvrState, TellsWhatIsSo) {
    Desk desk;
    desk.dvr.SetFaults({.version_answer = "\xFF", .jump_back = PercentJump{60, 10}});
    desk.dvr.PowerOn();
    const nlohmann::ordered_json state = StateOf(desk.dvr);
    EXPECT_EQ(state["state"], "booting");
    EXPECT_EQ(state["card"]["status"], "plug-out");
    EXPECT_EQ(state["card"]["image"], nullptr);
    EXPECT_EQ(state["faults"]["jump_back"]["to"], 10);
    EXPECT_EQ(state["faults"]["stop_at"], nullptr);
}

}  // namespace
}  // namespace dvrsim
