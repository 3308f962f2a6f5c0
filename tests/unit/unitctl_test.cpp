#include <nlohmann/json.hpp>

#include <signal.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/support/process.h"

// The built unitctl against running units.

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class Unitctl : public tests::Process {
  protected:
    // Returns when the unit's window stands.
    pid_t StartUnit(Words more = {}, const std::string& prefix = "unit-") {
        Words arguments = {"--headless", "--speed", "10"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const pid_t unit = Start(TOLVANE_BINARY, arguments, prefix);
        EXPECT_TRUE(WaitUntil([&] {
            return Read(prefix + "out").find("---CMainFrame::OnCreate") != std::string::npos;
        })) << Read(prefix + "err");
        return unit;
    }
    void End(pid_t child, int signal = SIGTERM) {
        kill(child, signal);
        EXPECT_EQ(Wait(child), signal == SIGTERM ? 0 : -signal);
    }
    int Ctl(const Words& arguments) { return Wait(Start(UNITCTL_BINARY, arguments, "ctl-")); }
    nlohmann::json State(Words options = {}) {
        options.push_back("state");
        EXPECT_EQ(Ctl(options), 0) << Read("ctl-err");
        return nlohmann::json::parse(Read("ctl-out"));
    }
};

TEST_F(Unitctl, SaysThatNobodyIsThere) {
    EXPECT_EQ(Ctl({"state"}), 3);
    EXPECT_EQ(Read("ctl-err"), "unitctl: no unit is running; start one with: tolvane\n");
    EXPECT_EQ(Ctl({"--unit", "other", "state"}), 3);
    EXPECT_EQ(Read("ctl-err"), "unitctl: no unit is running as 'other'; start one with: tolvane\n");
}

TEST_F(Unitctl, DrivesTheUnitAndSeesWhatComesOfIt) {
    const pid_t unit = StartUnit();
    const pid_t watcher = Start(UNITCTL_BINARY, {"watch", "all"}, "watch-");
    // The watch has begun when something was heard.
    ASSERT_TRUE(WaitUntil([&] {
        Ctl({"press", "at", "1", "1"});
        Ctl({"release"});
        return !Read("watch-out").empty();
    }));

    for (const char* request : {"suspend", "resume", "off"}) {
        EXPECT_EQ(Ctl({"request", request}), 0) << Read("ctl-err");
        EXPECT_TRUE(Read("ctl-out").ends_with(std::string("  ") + request + " acknowledged\n"));
    }
    fs::create_directory(Path("my card"));
    fs::current_path(Path(""));
    // A tap has been done when the finger is up again.
    for (const Words& words : {Words{"tap", "Power On", "for", "2s"},
                               {"press", "at", "1", "1"},
                               {"release"},
                               {"power", "off"},
                               {"battery", "40", "flag", "2"},
                               {"card", "in", "my card"},
                               {"screenshot", "screen.png"}})
        EXPECT_EQ(Ctl(words), 0) << Read("ctl-err");
    EXPECT_GT(fs::file_size(Path("screen.png")), 1000U);
    EXPECT_EQ(Ctl({"complete", "request"}), 0);
    EXPECT_EQ(Read("ctl-out"), "suspend\nresume\noff\n");
    EXPECT_EQ(Ctl({"help"}), 0);
    EXPECT_NE(Read("ctl-out").find("\nscreenshot FILE\n"), std::string::npos);
    EXPECT_EQ(Ctl({"card", "in"}), 1);
    EXPECT_EQ(Read("ctl-err"), "unitctl: a card is in already; take it out first\n");

    const nlohmann::json state = State();
    EXPECT_GT(state["time"], 20.0);
    EXPECT_EQ(state["power"]["external"], false);
    EXPECT_EQ(state["power"]["battery_percent"], 40);
    EXPECT_EQ(state["wizard"]["step"], -1);
    EXPECT_EQ(state["dvr"]["plugged"], true);
    EXPECT_GT(state["program"]["threads"], 3);
    EXPECT_FALSE(state["screen"]["texts"].empty());
    EXPECT_EQ(state["scaler"]["window"]["place"].size(), 4U);

    const std::string card = "card       in " + Path("my card");
    EXPECT_TRUE(WaitUntil([&] { return Read("watch-out").find(card) != std::string::npos; }));
    const std::string heard = Read("watch-out");
    std::size_t at = 0;
    for (const char* part :
         {"request    _KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
          "broadcast  _KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_ wparam 0",
          "PowerResume_Acknowledge_", "PowerOFF_Acknowledge_",
          "power      off, battery 40 % flag 2"}) {
        at = heard.find(part, at);
        EXPECT_NE(at, std::string::npos) << part << " is not in its place in\n" << heard;
    }
    End(unit);
    EXPECT_EQ(Wait(watcher), 3);
    EXPECT_EQ(Read("watch-err"), "unitctl: the other end has hung up\n");
    EXPECT_FALSE(fs::exists(Path("tolvane/unit.sock")));
}

TEST_F(Unitctl, HearsTheKindsItWatchesAndMissesAnAcknowledgement) {
    const pid_t unit = StartUnit();
    const std::pair<const char*, std::regex> kinds[] = {
        {"frames", std::regex("( *[0-9.]+  frame      .*\n)+")},
        {"broadcasts", std::regex("( *[0-9.]+  (broadcast|request  )  .*\n)+")},
        {"log", std::regex("( *[0-9.]+  log        .*\n)+")}};
    for (const auto& [kind, lines] : kinds)
        Start(UNITCTL_BINARY, {"watch", kind}, kind);
    for (const auto& [kind, lines] : kinds) {
        EXPECT_TRUE(WaitUntil([&, kind = kind] {
            EXPECT_EQ(Ctl({"dvr", "indicate", "DVR_RunningState", "02"}), 0);
            EXPECT_EQ(Ctl({"request", "resume"}), 0);
            return Read(std::string(kind) + "out").ends_with("\n");
        })) << kind;
        const std::string heard = Read(std::string(kind) + "out");
        EXPECT_TRUE(std::regex_match(heard, lines)) << heard;
    }
    // The program's thread ends when it cannot wait for the next request.
    EXPECT_EQ(Ctl({"fault", "call", "WaitForMultipleObjects", "always"}), 0);
    EXPECT_EQ(Ctl({"request", "resume"}), 0);
    EXPECT_EQ(Ctl({"request", "resume"}), 1);
    EXPECT_EQ(Read("ctl-err"), "unitctl: no acknowledgement came within 2 s of the unit's time\n");
    End(unit);
}

TEST_F(Unitctl, RunsAScenarioOnTheUnitThatRuns) {
    const pid_t unit = StartUnit({"--out", Path("left")});
    const auto run = [&](const std::string& name, const std::string& text) {
        std::ofstream(Path(name)) << text;
        return Ctl({"run", Path(name)});
    };
    std::ofstream(Path("press.scenario")) << "tap 'Power On'\n";
    EXPECT_EQ(run("walk.scenario",
                  "wait button 'Power On'\ninclude press.scenario\n"
                  "wait button OK\n"),
              0)
        << Read("ctl-err");
    const std::string told = Read("ctl-out");
    EXPECT_TRUE(told.starts_with("> wait button \"Power On\"\n> tap \"Power On\"\n")) << told;
    EXPECT_NE(told.find("walk: passed, "), std::string::npos) << told;
    for (const auto& [text, problem] :
         {std::pair("tap 'Power On'", ":1: tap \"Power On\": there is no \"Power On\""),
          {"card inn", ":1: 'inn' is not allowed after 'card'"},
          {"seed 3", ":1: seed 3: holds from a unit's start"}}) {
        EXPECT_EQ(run("wrong.scenario", text), 1);
        EXPECT_TRUE(Read("ctl-err").starts_with("unitctl: " + Path("wrong.scenario") + problem))
            << Read("ctl-err");
    }
    EXPECT_GT(fs::file_size(Path("left/wrong/state.json")), 100U);

    // One at a time, and one that nobody waits for any more is given up.
    std::ofstream(Path("long.scenario")) << "power on\nwait 60min\n";
    const pid_t waiting = Start(UNITCTL_BINARY, {"run", Path("long.scenario")}, "long-");
    ASSERT_TRUE(WaitUntil([&] { return !Read("long-out").empty(); }));
    EXPECT_EQ(Ctl({"run", Path("press.scenario")}), 1);
    EXPECT_EQ(Read("ctl-err"),
              "unitctl: the unit is at another scenario, long; allowed is one at a time\n");
    End(waiting, SIGKILL);
    EXPECT_TRUE(WaitUntil([&] { return run("short.scenario", "wait 1ms\n") == 0; }));
    // One that still runs does not keep the unit.
    const pid_t last = Start(UNITCTL_BINARY, {"run", Path("long.scenario")}, "last-");
    ASSERT_TRUE(WaitUntil([&] { return !Read("last-out").empty(); }));
    End(unit);
    EXPECT_EQ(Wait(last), 3);
}

TEST_F(Unitctl, UnitsWithNamesLiveSideBySideAndADeadOneIsNotInTheWay) {
    const pid_t first = StartUnit();
    const pid_t second = StartUnit({"--unit", "bench-2"}, "second-");
    EXPECT_EQ(Ctl({"--unit", "bench-2", "power", "off"}), 0) << Read("ctl-err");
    EXPECT_EQ(State()["power"]["external"], true);
    EXPECT_EQ(State({"--unit", "bench-2"})["power"]["external"], false);
    End(first, SIGKILL);
    EXPECT_EQ(Ctl({"state"}), 3);
    const pid_t third = StartUnit({}, "third-");
    EXPECT_EQ(State()["power"]["external"], true);
    End(second);
    End(third);
}

TEST_F(Unitctl, AnUnsafeRuntimeFolderCostsTheSocketAlone) {
    fs::create_directory(Path("tolvane"));
    fs::permissions(Path("tolvane"), fs::perms::all);
    const pid_t unit = StartUnit();
    EXPECT_EQ(Read("unit-err"),
              "tolvane: no control socket: " + Path("tolvane") +
                  ": the folder is open to other users; it must have the permissions 0700\n");
    End(unit);
}

}  // namespace
