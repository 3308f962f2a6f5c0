#include <filesystem>

#include "tests/unit/unit_process.h"

// The built command `tolvane`.

namespace {

namespace fs = std::filesystem;

class Tolvane : public tests::UnitProcess {};

TEST_F(Tolvane, RunsTheUpdateByItselfWithAPictureOfEveryScreen) {
    EXPECT_EQ(Run(TOLVANE_BINARY, {"--auto", "--screens", Path("screens"), "--log", Path("log")}),
              0);
    EXPECT_EQ(Read("err"), "");
    EXPECT_NE(Read("log").find("FW_Upgrade_Version_IND, Percent:100%\r\n"), std::string::npos);
    for (const char* name : {"01-power-on", "03-notice-check-card", "11-updating-half",
                             "13-notice-remove-card", "17-result-success"})
        EXPECT_GT(fs::file_size(Path("screens/") + name + ".png"), 1000U) << name;
}

TEST_F(Tolvane, ClosesAtASignalAndAsksForWhatARealDvrNeeds) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const pid_t unit = StartAndWait("unit-", {"--headless", "--com9", "/dev/no-such-tty"});
        for (const tests::Words& command :
             {tests::Words{"dvr", "reset"}, {"card", "in"}, {"card", "out"}})
            EXPECT_EQ(Ctl(command), 0);
        EXPECT_EQ(End(unit, signal), 0);
        EXPECT_EQ(Read("unit-err"),
                  "tolvane: /dev/no-such-tty: cannot open the serial device: No such file or "
                  "directory\n"
                  "tolvane: The program resets the DVR: switch the DVR's power off and on.\n"
                  "tolvane: Put the SD card with the update image into the DVR.\n"
                  "tolvane: Take the SD card out of the DVR.\n");
        const std::string log = Read("unit-out");
        EXPECT_NE(log.find("COM_Init, CreateFile() fail!!!, ErrorCode(55)"), std::string::npos);
        // Printed at the end of an orderly close.
        EXPECT_NE(log.find("---CPowerDetector::DeInit\n"), std::string::npos) << log;
    }
}

// Unit and DVR as two processes with a serial line between them.
class OutsideDvr : public tests::UnitProcess {
  protected:
    // True when the DVR's reply to the command has that text.
    bool Command(const std::string& command, const char* text = "") {
        EXPECT_EQ(Run(DVRSIM_BINARY, {"--send", command}, "send-"), 0) << Read("send-err");
        return Read("send-out").find(text) != std::string::npos;
    }
};

TEST_F(OutsideDvr, IsUpdatedWithItsResetAsACommand) {
    const std::string link = Path("line");
    const pid_t dvr = Start(DVRSIM_BINARY, {"--link", link, "--speed", FREE_SPEED}, "dvr-");
    ASSERT_TRUE(WaitUntil([&] { return std::filesystem::exists(link); }));
    Command("update-time 6s");
    const pid_t wizard =
        Start(TOLVANE_BINARY, {"--auto", "--speed", FREE_SPEED, "--com9", link, "--reset-command",
                               std::string(DVRSIM_BINARY) + " --send reset && echo reset >&2"});
    // The test is the operator at the DVR.
    const std::string put = "tolvane: Put the SD card with the update image into the DVR.\n";
    const std::string take = "tolvane: Take the SD card out of the DVR.\n";
    ASSERT_TRUE(WaitUntil([&] { return Read("err") == "reset\nreset\n" + put; })) << Read("err");
    // A DVR that finds a card while it boots starts the update before Update is tapped.
    ASSERT_TRUE(WaitUntil([&] { return Command("state", "\"state\": \"normal\""); }));
    Command("card in");
    ASSERT_TRUE(WaitUntil([&] { return Read("err").ends_with(take); })) << Read("err");
    Command("card out");
    EXPECT_EQ(Wait(wizard), 0) << Read("err");
    EXPECT_EQ(Read("err"), "reset\nreset\n" + put + "reset\n" + take + "reset\n");
    EXPECT_TRUE(Command("state", "\"firmware\": \"14.09.01.V1.02.03\""));
    EXPECT_EQ(End(dvr), 0);
}

}  // namespace
