#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/unit/unit_process.h"

// The built unitctl against running units.

namespace {

namespace fs = std::filesystem;
using tests::Words;

class Unitctl : public tests::UnitProcess {
  protected:
    std::string Error(const Words& words, int status) {
        EXPECT_EQ(Ctl(words), status);
        return Read("ctl-err");
    }
    void Done(const Words& words) { EXPECT_EQ(Ctl(words), 0) << Read("ctl-err"); }
    nlohmann::json State(Words options = {}) {
        options.push_back("state");
        Done(options);
        return nlohmann::json::parse(Read("ctl-out"));
    }
};

TEST_F(Unitctl, ExecutesCommandsAndWatchesTheirEvents) {
    const pid_t unit = StartAndWait();
    const pid_t watcher = Start(UNITCTL_BINARY, {"watch", "all"}, "watch-");
    // The watch has begun when it prints something.
    ASSERT_TRUE(WaitUntil([&] {
        Ctl({"press", "at", "1", "1"});
        Ctl({"release"});
        return !Read("watch-out").empty();
    }));

    for (const char* request : {"suspend", "resume", "off"}) {
        EXPECT_TRUE(WaitUntil([&] { return Ctl({"request", request}) == 0; })) << request;
        EXPECT_TRUE(Read("ctl-out").ends_with(std::string("  ") + request + " acknowledged\n"));
    }
    // The window exists before its first painting.
    ASSERT_TRUE(WaitUntil([&] {
        Done({"texts"});
        return Read("ctl-out").find("\nPower On\n") != std::string::npos;
    }));
    fs::create_directory(Path("my card"));
    fs::current_path(Path(""));
    // A tap ends when the finger is up.
    for (const Words& words : {Words{"tap", "Power On", "for", "2s"},
                               {"press", "at", "1", "1"},
                               {"release"},
                               {"power", "off"},
                               {"battery", "40", "flag", "2"},
                               {"card", "in", "my card"},
                               {"screenshot", "screen.png"}})
        Done(words);
    EXPECT_GT(fs::file_size(Path("screen.png")), 1000U);
    Done({"complete", "request"});
    EXPECT_EQ(Read("ctl-out"), "suspend\nresume\noff\n");
    Done({"help"});
    EXPECT_NE(Read("ctl-out").find("\nscreenshot FILE\n"), std::string::npos);
    EXPECT_EQ(Error({"card", "in"}, 1), "unitctl: a card is in already; take it out first\n");

    const nlohmann::json state = State();
    EXPECT_GT(state["time"], 20.0);
    EXPECT_EQ(state["power"]["external"], false);
    EXPECT_EQ(state["power"]["battery_percent"], 40);
    EXPECT_EQ(state["wizard"]["step"], -1);
    EXPECT_EQ(state["dvr"]["plugged"], true);
    EXPECT_GT(state["program"]["threads"], 3);
    EXPECT_FALSE(state["screen"]["texts"].empty());
    EXPECT_EQ(state["scaler"]["window"]["place"].size(), 4U);

    const std::string card = "card       in \"" + Path("my card") + "\"";
    EXPECT_TRUE(WaitUntil([&] { return Read("watch-out").find(card) != std::string::npos; }));
    const std::string watched = Read("watch-out");
    std::size_t at = 0;
    for (const char* part :
         {"request    _KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
          "broadcast  _KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_ 0x0 0x0",
          "PowerResume_Acknowledge_", "PowerOFF_Acknowledge_",
          "supply     line 0 battery 2 percent 40"}) {
        at = watched.find(part, at);
        EXPECT_NE(at, std::string::npos) << part << " is not at its position in\n" << watched;
    }
    EXPECT_EQ(End(unit), 0);
    EXPECT_EQ(Wait(watcher), 3);
    EXPECT_EQ(Read("watch-err"), "unitctl: the server has hung up\n");
    EXPECT_FALSE(fs::exists(Path("tolvane/unit.sock")));
}

TEST_F(Unitctl, WatchesKindsOfEventsAndReportsAMissingAcknowledgement) {
    const pid_t unit = StartAndWait();
    const std::pair<const char*, std::regex> kinds[] = {
        {"frames", std::regex("( *[0-9.]+  frame      .*\n)+")},
        {"broadcasts", std::regex("( *[0-9.]+  (broadcast|request  )  .*\n)+")},
        {"log", std::regex("( *[0-9.]+  log        .*\n)+")}};
    for (const auto& [kind, lines] : kinds)
        Start(UNITCTL_BINARY, {"watch", kind}, kind);
    for (const auto& [kind, lines] : kinds) {
        EXPECT_TRUE(WaitUntil([&, kind = kind] {
            Done({"dvr", "indicate", "DVR_RunningState", "02"});
            Ctl({"request", "resume"});
            return Read(std::string(kind) + "out").ends_with("\n");
        })) << kind;
        const std::string watched = Read(std::string(kind) + "out");
        EXPECT_TRUE(std::regex_match(watched, lines)) << watched;
    }
    // The program's thread ends when its wait for requests fails.
    Done({"fault", "call", "WaitForMultipleObjects", "always"});
    Done({"request", "resume"});
    EXPECT_EQ(Error({"request", "resume"}, 1), "unitctl: no acknowledgement came within 2 s\n");
    EXPECT_EQ(End(unit), 0);
}

TEST_F(Unitctl, RunsScenariosOnARunningUnit) {
    const pid_t unit = StartAndWait("unit-", {"--headless", "--out", Path("left")});
    const auto write = [&](const std::string& name, const std::string& text) {
        std::ofstream(Path(name)) << text;
        return Words{"run", Path(name)};
    };
    const Words press = write("press.scenario", "tap 'Power On'\n");
    Done(
        write("flow.scenario", "wait button 'Power On'\ninclude press.scenario\nwait button OK\n"));
    const std::string output = Read("ctl-out");
    EXPECT_TRUE(output.starts_with("> wait button \"Power On\"\n> tap \"Power On\"\n")) << output;
    EXPECT_NE(output.find("flow: passed, "), std::string::npos) << output;
    for (const auto& [text, problem] :
         {std::pair("tap 'Power On'", ":1: tap \"Power On\": there is no \"Power On\""),
          {"card inn", ":1: 'inn' is not allowed after 'card'"},
          {"seed 3", ":1: seed 3: applies when a unit starts"}})
        EXPECT_TRUE(Error(write("wrong.scenario", text), 1)
                        .starts_with("unitctl: " + Path("wrong.scenario") + problem))
            << Read("ctl-err");
    EXPECT_GT(fs::file_size(Path("left/wrong/state.json")), 100U);

    // One at a time; a scenario is aborted when its client hangs up.
    const Words endless = write("long.scenario", "power on\nwait 60min\n");
    const auto begin = [&](const std::string& tag) {
        const pid_t begun = Start(UNITCTL_BINARY, endless, tag);
        EXPECT_TRUE(WaitUntil([&] { return !Read(tag + "out").empty(); }));
        return begun;
    };
    const pid_t waiting = begin("long-");
    EXPECT_EQ(Error(press, 1),
              "unitctl: the unit already runs the scenario long; allowed is one at a time\n");
    End(waiting, SIGKILL);
    EXPECT_TRUE(WaitUntil([&] { return Ctl(write("short.scenario", "wait 1ms\n")) == 0; }));
    // A running scenario does not prevent the unit from closing.
    const pid_t last = begin("last-");
    EXPECT_EQ(End(unit), 0);
    EXPECT_EQ(Wait(last), 3);
}

TEST_F(Unitctl, ReachesUnitsByNameAndReplacesAKilledUnit) {
    EXPECT_EQ(Error({"--unit", "other", "state"}, 3),
              "unitctl: no unit is running as 'other'; start one with: tolvane\n");
    const pid_t first = StartAndWait();
    const pid_t second = StartAndWait("second-", {"--headless", "--unit", "garage-2"});
    Done({"--unit", "garage-2", "power", "off"});
    EXPECT_EQ(State()["power"]["external"], true);
    EXPECT_EQ(State({"--unit", "garage-2"})["power"]["external"], false);
    End(first, SIGKILL);
    EXPECT_EQ(Error({"state"}, 3), "unitctl: no unit is running; start one with: tolvane\n");
    const pid_t third = StartAndWait("third-");
    EXPECT_EQ(State()["power"]["external"], true);
    EXPECT_EQ(End(second), 0);
    EXPECT_EQ(End(third), 0);
}

TEST_F(Unitctl, AnUnsafeRuntimeFolderPreventsOnlyTheSocket) {
    fs::create_directory(Path("tolvane"));
    fs::permissions(Path("tolvane"), fs::perms::all);
    EXPECT_EQ(End(StartAndWait()), 0);
    EXPECT_EQ(Read("unit-err"),
              "tolvane: no control socket: " + Path("tolvane") +
                  ": other users can access the folder; it must have the permissions 0700\n");
}

}  // namespace
