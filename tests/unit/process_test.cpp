#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "tests/support/process.h"

// The built program as an engineer starts it.

namespace {

namespace fs = std::filesystem;

class Tolvane : public tests::Process {};

TEST_F(Tolvane, WalksTheUpdateByItselfWithAPictureOfEveryScreen) {
    ASSERT_EQ(Run(TOLVANE_BINARY, {"--auto", "--screens", Path("screens"), "--log", Path("log")}),
              0)
        << Read("err");
    EXPECT_EQ(Read("err"), "");
    EXPECT_NE(Read("log").find("FW_Upgrade_Version_IND, Percent:100%\r\n"), std::string::npos);
    for (const char* name : {"01-power-on", "03-notice-check-card", "11-updating-half",
                             "13-notice-remove-card", "17-result-success"})
        EXPECT_GT(fs::file_size(Path("screens/") + name + ".png"), 1000U) << name;
}

TEST_F(Tolvane, ClosesItsWindowInOrderAtASignalAndAsksForWhatAnotherDvrNeeds) {
    const std::vector<std::string> asked[] = {{"dvr", "reset"}, {"card", "in"}, {"card", "out"}};
    for (const int signal : {SIGINT, SIGTERM}) {
        fs::remove(Path("log"));
        const pid_t child = Start(TOLVANE_BINARY, {"--headless", "--speed", "100", "--com9",
                                                   "/dev/no-such-tty", "--log", Path("log")});
        EXPECT_TRUE(WaitUntil(
            [&] { return Read("log").find("---CMainFrame::OnCreate") != std::string::npos; }));
        for (const std::vector<std::string>& command : asked)
            EXPECT_EQ(Run(UNITCTL_BINARY, command, "ctl-"), 0);
        kill(child, signal);
        EXPECT_EQ(Wait(child), 0);
        EXPECT_EQ(Read("err"),
                  "tolvane: /dev/no-such-tty: cannot open the serial device: No such file or "
                  "directory\n"
                  "tolvane: The program resets the DVR: switch the DVR's power off and on.\n"
                  "tolvane: Put the SD card with the update image into the DVR.\n"
                  "tolvane: Take the SD card out of the DVR.\n");
        const std::string log = Read("log");
        EXPECT_NE(log.find("COM_Init, CreateFile() fail!!!, ErrorCode(55)"), std::string::npos);
        // A window that has never painted says so at its very end.
        EXPECT_NE(log.find("---CPowerDetector::DeInit\r\n"), std::string::npos) << log;
    }
}

}  // namespace
