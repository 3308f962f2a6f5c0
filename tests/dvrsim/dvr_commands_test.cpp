#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "dvrsim/card_folders.h"
#include "dvrsim/commands/dvr_commands.h"
#include "dvrsim/commands/dvr_state.h"
#include "dvrsim/frame_codec.h"

namespace dvrsim {
namespace {

using namespace std::chrono_literals;

// A host whose time stands still. RunNext() runs the oldest action, whatever its delay.
class StoppedHost final : public Host {
  public:
    std::chrono::microseconds Now() const override { return {}; }
    std::uint64_t After(std::chrono::microseconds delay, std::function<void()> action) override {
        last_delay = delay;
        actions[++last_id_] = std::move(action);
        return last_id_;
    }
    void Cancel(std::uint64_t id) override { actions.erase(id); }
    void Transmit(std::span<const std::uint8_t>) override { ++frames; }
    void RunNext() { actions.extract(actions.begin()).mapped()(); }

    std::map<std::uint64_t, std::function<void()>> actions;
    std::chrono::microseconds last_delay{};
    int frames = 0;

  private:
    std::uint64_t last_id_ = 0;
};

class DvrCommands : public testing::Test {
  protected:
    static std::vector<DvrTable::Row> Rows() {
        auto rows = DvrRows();
        for (auto& row : DvrFaultRows())
            rows.push_back(row);
        return rows;
    }
    bool Execute(const std::string& line) { return commands_.Execute(dvr, line).done; }

    StoppedHost host;
    Dvr dvr{host};
    const DvrTable commands_{Rows()};
};

TEST_F(DvrCommands, EachFaultIsSetAndClearedAlone) {
    const struct {
        const char* set;
        const char* clear;
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.set);
        EXPECT_TRUE(Execute(std::string("fault dvr ") + c.set));
        EXPECT_EQ(dvr.GetFaults(), c.faults);
        EXPECT_TRUE(Execute(std::string("fault dvr ") + c.clear));
        EXPECT_EQ(dvr.GetFaults(), Faults());
    }
    for (const auto& c : cases)
        EXPECT_TRUE(Execute(std::string("fault dvr ") + c.set));
    EXPECT_EQ(dvr.GetFaults().slow_factor, 9U) << "a fault must not clear another";
    EXPECT_EQ(StateOf(dvr)["faults"]["jump_back"]["to"], 10);
    EXPECT_TRUE(Execute("fault dvr none"));
    EXPECT_EQ(dvr.GetFaults(), Faults());
    EXPECT_EQ(StateOf(dvr)["faults"]["stop_at"], nullptr);
}

TEST_F(DvrCommands, SetTimesAndRefuseWhatDoesNotFitAFrame) {
    EXPECT_FALSE(Execute("dvr reboot")) << "without power";
    EXPECT_TRUE(Execute("dvr indicate Key 01"));
    EXPECT_EQ(host.frames, 0) << "without power";
    EXPECT_TRUE(Execute("dvr update-time 15s"));
    EXPECT_EQ(dvr.GetTimings().update.least, 14s);
    EXPECT_EQ(dvr.GetTimings().update.most, 16s);
    // The condition of a card needs a card.
    EXPECT_TRUE(Execute("card report full-event"));
    EXPECT_EQ(StateOf(dvr)["card"]["status"], "plug-out");
    const std::string longest(64, 'v');
    const std::pair<std::string, const char*> cases[] = {
        {"dvr firmware " + longest + "v", "at most 64 bytes"},
        {"fault dvr version " + longest + "v", "at most 64 bytes"},
        {"fault dvr image-version " + longest, "at most 63 bytes"},
        {"dvr indicate 0x10 " + std::string(2 * 65, 'A'), "at most 64 bytes"},
        {"dvr indicate 0x10000", "allowed is 0 to 0xFFFF"},
        {"dvr indicate Foo", "a code or one of DVR_RunningState, DVR_Mode, "},
    };
    for (const auto& [line, why] : cases) {
        std::string problem;
        EXPECT_FALSE(commands_.Read(*control::SplitWords(line, problem), problem)) << line;
        EXPECT_NE(problem.find(why), std::string::npos) << line << ": " << problem;
    }
}

TEST(Dvr, CancelsItsActionsAtItsEnd) {
    StoppedHost host;
    {
        Dvr dvr(host);
        dvr.PowerOn();
        EXPECT_EQ(StateOf(dvr)["state"], "booting");
        EXPECT_EQ(host.actions.size(), 1U);
        dvr.InsertCard("/");
        EXPECT_EQ(host.actions.size(), 2U);
    }
    EXPECT_TRUE(host.actions.empty());
}

TEST(Dvr, KeepsNothingButItsVersionOverAPowerCycle) {
    StoppedHost host;
    Dvr dvr(host);
    const auto request = [&](unsigned code, std::uint8_t value) {
        const std::uint8_t payload[] = {value};
        dvr.Receive(EncodeFrame(FrameType::kRequest, static_cast<std::uint16_t>(code), payload));
    };
    const auto boot = [&] {
        dvr.PowerOn();
        while (dvr.GetState() != Dvr::State::kNormal)
            host.RunNext();
        EXPECT_TRUE(dvr.Recording());
    };
    dvr.InsertCard("/dev");
    boot();
    dvr.PowerOn();
    EXPECT_EQ(dvr.GetState(), Dvr::State::kNormal) << "it has power already";
    request(0x0022, 0);
    request(0x0011, 2);
    while (dvr.GetMode() != Mode::kPlay)
        host.RunNext();
    for (int i = 0; i < 100; ++i)
        request(0x8010, 0);
    dvr.PowerOff();
    EXPECT_FALSE(dvr.HasPicture());
    EXPECT_EQ(StateOf(dvr)["running_state"], "initializing");
    EXPECT_EQ(StateOf(dvr)["mode"], "video");
    boot();
    const std::size_t actions = host.actions.size();
    request(0x8010, 0);
    EXPECT_EQ(host.actions.size(), actions + 1) << "no request is pending";
    EXPECT_LE(host.last_delay, 12ms) << "the processor is not busy";
    auto damaged = EncodeFrame(FrameType::kRequest, 0x8010, {});
    damaged.back() ^= 1U;
    dvr.Receive(damaged);
    EXPECT_EQ(dvr.DamagedFrames(), 1U);
}

TEST(Dvr, ReportsEachPercentOfAnUpdateOnce) {
    const TemporaryCard card;
    StoppedHost host;
    Dvr dvr(host);
    dvr.InsertCard(card.path());
    dvr.PowerOn();
    while (dvr.GetState() != Dvr::State::kUpdateFinished)
        host.RunNext();
    while (!host.actions.empty())
        host.RunNext();
    EXPECT_EQ(host.frames, 102) << "INITIALIZING, the card, and 100 reports";
}

}  // namespace
}  // namespace dvrsim
