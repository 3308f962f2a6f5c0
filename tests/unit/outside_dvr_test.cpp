#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "tests/support/process.h"

// The wizard's unit and the DVR as two processes with a serial line between them.

namespace {

namespace fs = std::filesystem;

class OutsideDvr : public tests::Process {
  protected:
    void Command(const std::string& command) {
        EXPECT_EQ(Run(DVRSIM_BINARY, {"--send", command}, "send-"), 0) << Read("send-err");
    }
};

TEST_F(OutsideDvr, IsUpdatedByTheWizardWithItsResetsAsACommand) {
    const std::string link = Path("line");
    const pid_t dvr = Start(DVRSIM_BINARY, {"--link", link, "--speed", "8"}, "dvr-");
    ASSERT_TRUE(WaitUntil([&] { return fs::exists(link); }));
    Command("update-time 6s");
    const pid_t wizard =
        Start(TOLVANE_BINARY, {"--auto", "--speed", "8", "--com9", link, "--reset-command",
                               std::string(DVRSIM_BINARY) + " --send reset && echo reset >&2",
                               "--screens", Path("screens"), "--log", Path("log")});
    // The hands that a person has at the DVR, as they are asked to.
    const std::string put = "tolvane: Put the SD card with the update image into the DVR.\n";
    const std::string take = "tolvane: Take the SD card out of the DVR.\n";
    ASSERT_TRUE(WaitUntil([&] { return Read("err") == "reset\nreset\n" + put; })) << Read("err");
    // A card that is in when the DVR looks for one starts the update before it is asked for.
    ASSERT_TRUE(WaitUntil([&] {
        Command("state");
        return Read("send-out").find("\"state\": \"normal\"") != std::string::npos;
    }));
    Command("card in");
    ASSERT_TRUE(WaitUntil([&] { return Read("err").ends_with(take); })) << Read("err");
    Command("card out");
    EXPECT_EQ(Wait(wizard), 0) << Read("err");
    EXPECT_EQ(Read("err"), "reset\nreset\n" + put + "reset\n" + take + "reset\n");
    Command("state");
    EXPECT_NE(Read("send-out").find("\"firmware\": \"14.09.01.V1.02.03\""), std::string::npos);
    EXPECT_NE(Read("log").find("FW_Upgrade_Version_IND, Percent:100%\r\n"), std::string::npos);
    kill(dvr, SIGTERM);
    EXPECT_EQ(Wait(dvr), 0);
}

}  // namespace
