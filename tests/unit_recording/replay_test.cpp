#include "unit/recording/replay.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>

#include "tests/support/process.h"
#include "tests/unit_harness/wizard_run.h"

namespace tests {
namespace {

using namespace std::chrono_literals;

constexpr char kUpdate[] = RECORDINGS "/update.recording";
constexpr char kFreeScenario[] = RECORDINGS "/free.scenario";

class Replays : public Process {
  protected:
    unit::ReplayResult Replay(const std::string& file) {
        const auto recording = unit::ReadRecording(file, report_);
        EXPECT_TRUE(recording) << report_;
        if (!recording)
            return {};
        replayed_log_.clear();
        unit::DebugLog log([this](std::chrono::microseconds, const std::string& line) {
            replayed_log_ += line + '\n';
        });
        unit::ReplayResult result =
            unit::Replay(*recording, TheProgram(), log, [](const std::string&) {});
        report_ = unit::ReplayReport(*recording, result);
        return result;
    }

    static std::string TextOf(const std::string& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }

    // The kept recording with the first match of `pattern` replaced: the file, and the line. As a
    // recording of a free run it is compared with tolerance.
    std::pair<std::string, int> Changed(const std::string& pattern, const std::string& by,
                                        bool free_run = false) {
        const char* const mode = free_run ? "mode free speed 1" : "mode simulated";
        const std::string text =
            std::regex_replace(TextOf(kUpdate), std::regex("mode simulated"), mode);
        std::smatch match;
        EXPECT_TRUE(std::regex_search(text, match, std::regex(pattern))) << pattern;
        const auto line = 1 + std::count(text.begin(), match[0].first, '\n');
        std::ofstream(Path("changed"), std::ios::binary)
            << match.prefix() << match.format(by) << match.suffix();
        return {Path("changed"), static_cast<int>(line)};
    }

    std::string replayed_log_;
    std::string report_;
};

TEST_F(Replays, TheKeptRecordingOfAnUpdateIsReproduced) {
    const unit::ReplayResult result = Replay(kUpdate);
    EXPECT_FALSE(result.difference) << report_;
    EXPECT_EQ(result.notes, std::vector<std::string>());
    EXPECT_EQ(result.lag, 0us);
    EXPECT_EQ(result.outputs, (std::array<std::size_t, 3>{10, 4, 0})) << report_;
    EXPECT_EQ(result.screens, 8U);
    EXPECT_NE(replayed_log_.find("FW_Upgrade_Version_IND, Percent:4%"), std::string::npos);
}

TEST_F(Replays, AChangedLineIsTheFirstDifference) {
    const struct {
        const char* pattern;
        const char* by;
        const char* difference;
        int lines_on;  // from the changed line to the one where it shows
        const char* recorded;
        const char* replayed;
    } cases[] = {
        {"line to-dvr A5 5A 10 80 2E 00 01 00 01 BE", "line to-dvr A5 5A 10 80 2E 00 01 01 01 BF",
         "frame", 0, "00 01 01 01 BF", "FW_Upgrade_Version query"},
        {"control 0x0881 02", "control 0x0881 03", "request", 0, "control 0x0881 03",
         "control 0x0881 02"},
        {"Update Percent : 3%", "Update Percent : 8%", "screen", 0, "Update Percent : 8%",
         "Update Percent : 3%"},
        {"screen bce1", "screen ace1", "screen", 0, "ace1", "bce1"},
        {"80 00 2E 00 12 03 ([^\n]*) 05 23", "80 00 2E 00 12 07 $1 05 27", "screen", 1,
         "Update Percent : 3%", "Update Percent : 7%"},
        {"[0-9.]+ finger up [0-9]+ [0-9]+\n", "", "screen", 0, "SDカードを抜いて下さい。",
         "Power On"},
        {"[0-9.]+ end\n", "26.110000 line to-dvr A5 5A 10 80 11 00 01 00 01 A1\n$&", "frame", 0,
         "DVR_Mode query", ""},
    };
    for (const auto& c : cases)
        for (const bool free_run : {false, true}) {
            SCOPED_TRACE(c.pattern + std::string(free_run ? ", free" : ""));
            const auto [file, line] = Changed(c.pattern, c.by, free_run);
            const unit::ReplayResult result = Replay(file);
            ASSERT_TRUE(result.difference);
            EXPECT_EQ(result.difference->line, line + c.lines_on) << report_;
            EXPECT_EQ(result.difference->what, c.difference) << report_;
            EXPECT_NE(result.difference->recorded.find(c.recorded), std::string::npos) << report_;
            EXPECT_NE(result.difference->replayed.find(c.replayed), std::string::npos) << report_;
            EXPECT_TRUE(result.screen);
            EXPECT_TRUE(report_.starts_with(file + ":")) << report_;
        }
}

TEST_F(Replays, FramesOfAFreeRunMayChangePlaces) {
    for (const bool free_run : {false, true}) {
        const auto file = Changed("(.*80 10 00 01.*\n)(.*80 11 00 01.*\n)", "$2$1", free_run).first;
        EXPECT_EQ(Replay(file).difference.has_value(), !free_run) << report_;
    }
}

TEST_F(Replays, EveryInputOfAUnitIsReplayed) {
    for (const char* log : {"recorded", "alone"}) {
        std::vector<std::string> arguments = {"--scenario", RECORDINGS "/inputs.scenario", "--log",
                                              Path(log)};
        if (log == std::string("recorded"))
            arguments.insert(arguments.end(), {"--record", Path("recording")});
        EXPECT_EQ(Run(TOLVANE_BINARY, arguments), 0) << Read("err");
    }
    EXPECT_EQ(Read("recorded"), Read("alone")) << "recording changes nothing";
    EXPECT_EQ(Run(TOLVANE_BINARY, {"--replay", Path("recording"), "--log", Path("replayed")}), 0);
    EXPECT_EQ(Read("recorded"), Read("replayed"));
    EXPECT_GT(Read("recorded").size(), 4000U);
    for (const char* part : {"PowerOFF_Acknowledge_", " -> 170\n", " clock forward 3600.000000\n"})
        EXPECT_NE(Read("recording").find(part), std::string::npos) << part;
}

TEST_F(Replays, ARecordingThatWasCutOffIsReplayedUpToThere) {
    const std::string text = TextOf(kUpdate);
    std::ofstream(Path("cut"), std::ios::binary) << text.substr(0, text.size() / 2);
    const unit::ReplayResult result = Replay(Path("cut"));
    EXPECT_FALSE(result.difference) << report_;
    ASSERT_EQ(result.notes.size(), 1U);
    EXPECT_TRUE(result.notes[0].ends_with(", where the recording was cut off")) << result.notes[0];
}

// Recordings against the host's clock, over both kinds of line, through the command.
TEST_F(Replays, FreeRunningRecordingsAreReproduced) {
    for (const char* line : {"sim", "pty"}) {
        EXPECT_EQ(Run(TOLVANE_BINARY,
                      {"--scenario", kFreeScenario, "--com9", line, "--record", Path(line)}),
                  0)
            << Read("err");
        EXPECT_EQ(Run(TOLVANE_BINARY, {"--replay", Path(line)}), 0) << Read("err");
        EXPECT_NE(Read("err").find(" equal, "), std::string::npos) << Read("err");
    }
}

TEST_F(Replays, TheCommandReportsTheDifferenceAndSavesTheScreen) {
    const auto [file, line] = Changed("Update Percent : 3%", "Update Percent : 8%");
    EXPECT_EQ(Run(TOLVANE_BINARY, {"--replay", file, "--screens", Path("screens")}), 1);
    EXPECT_TRUE(Read("err").starts_with("tolvane: " + file + ":" + std::to_string(line) +
                                        ": the replay differs in a screen; "))
        << Read("err");
    EXPECT_TRUE(std::ifstream(Path("screens/replay.png")).good());
    std::ofstream(Path("newer")) << "tolvane recording 2\n";
    EXPECT_EQ(Run(TOLVANE_BINARY, {"--replay", Path("newer")}), 2);
    EXPECT_EQ(Read("err"), "tolvane: " + Path("newer") +
                               ":1: the recording has version 2; this tolvane reads version 1\n");
    EXPECT_EQ(Run(TOLVANE_BINARY, {"--auto", "--record", Path("no/folder")}), 1);
    EXPECT_EQ(Read("err"), "tolvane: " + Path("no/folder") + ": No such file or directory\n");
}

}  // namespace
}  // namespace tests
