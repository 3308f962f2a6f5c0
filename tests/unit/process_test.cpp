#include <gtest/gtest.h>
#include <pty.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/process.h"

// The built program as an engineer starts it: options in, exit status, lines and files out.

namespace {

namespace fs = std::filesystem;

class Process : public tests::Process {
  protected:
    pid_t Start(const std::vector<std::string>& arguments) {
        return tests::Process::Start(TOLVANE_BINARY, arguments);
    }
    int Run(const std::vector<std::string>& arguments) { return Wait(Start(arguments)); }
};

TEST_F(Process, AutoWalksTheUpdateAlikeForTheSameSeed) {
    std::string first;
    for (const char* log : {"log1", "log2"}) {
        ASSERT_EQ(Run({"--auto", "--seed", "3", "--screens", Path("screens"), "--log", Path(log)}),
                  0)
            << Read("err");
        EXPECT_EQ(Read("err"), "");
        EXPECT_NE(Read(log).find("FW_Upgrade_Version_IND, Percent:100%\r\n"), std::string::npos);
    }
    EXPECT_EQ(Read("log1"), Read("log2"));
    for (const char* name : {"01-power-on", "03-notice-check-card", "11-updating-half",
                             "13-notice-remove-card", "17-result-success"})
        EXPECT_GT(fs::file_size(Path("screens/") + name + ".png"), 1000U) << name;
}

TEST_F(Process, AutoSaysWhereAFailedWalkStood) {
    fs::create_directory(Path("empty"));
    EXPECT_EQ(Run({"--auto", "--card", Path("empty"), "--screens", Path("screens"), "--out",
                   Path("left")}),
              1);
    const std::string said = Read("err");
    EXPECT_TRUE(
        said.starts_with("tolvane: update.scenario:45: wait percent at least 1: "
                         "did not come within 30 s; the percent is 0\n"))
        << said;
    EXPECT_NE(said.find("DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。"),
              std::string::npos)
        << said;
    EXPECT_GT(fs::file_size(Path("left/update/screen.png")), 1000U);
}

TEST_F(Process, WrongOptionsAreOneLineAndStatusTwo) {
    const std::vector<std::string> cases[] = {{"--nope"},
                                              {"extra"},
                                              {"--com9", "foo"},
                                              {"--speed", "0"},
                                              {"--speed", "1e9"},
                                              {"--speed", "fast"},
                                              {"--seed", "-1"},
                                              {"--seed", "3x"},
                                              {"--card", "/no"},
                                              {"--log"},
                                              {"--reset-command", "true"},
                                              {"--unit", "a/b"}};
    for (const std::vector<std::string>& arguments : cases) {
        SCOPED_TRACE(arguments.front() + " " + arguments.back());
        EXPECT_EQ(Run(arguments), 2);
        const std::string said = Read("err");
        EXPECT_TRUE(said.starts_with("tolvane: ")) << said;
        EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
        EXPECT_EQ(Read("out"), "");
    }
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_NE(Read("out").find("--com9"), std::string::npos);
}

TEST_F(Process, SignalsCloseTheWindowInOrderAndAMissingTtyIsTold) {
    for (const int signal : {SIGINT, SIGTERM}) {
        fs::remove(Path("log"));
        const pid_t child = Start(
            {"--headless", "--speed", "100", "--com9", "/dev/no-such-tty", "--log", Path("log")});
        while (Read("log").find("---CMainFrame::OnCreate") == std::string::npos)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        kill(child, signal);
        EXPECT_EQ(Wait(child), 0);
        EXPECT_EQ(Read("err"),
                  "tolvane: /dev/no-such-tty: cannot open the serial device: No such file or "
                  "directory\n");
        const std::string log = Read("log");
        EXPECT_NE(log.find("COM_Init, CreateFile() fail!!!, ErrorCode(55)"), std::string::npos);
        // A window that has never painted says so at its very end.
        EXPECT_NE(log.find("---CPowerDetector::DeInit\r\n"), std::string::npos) << log;
    }
}

TEST_F(Process, TheSerialDeviceHasTheProgramsSettings) {
    int far_end = -1;
    int near_end = -1;
    char path[128] = {};
    ASSERT_EQ(openpty(&far_end, &near_end, path, nullptr, nullptr), 0);
    const pid_t child = Start({"--headless", "--speed", "100", "--com9", path});
    // The settings are made before the first query goes out.
    char sync = 0;
    ASSERT_EQ(read(far_end, &sync, 1), 1);
    EXPECT_EQ(sync, '\xA5');
    termios state{};
    EXPECT_EQ(tcgetattr(far_end, &state), 0);
    EXPECT_EQ(cfgetispeed(&state), B460800);
    EXPECT_EQ(cfgetospeed(&state), B460800);
    EXPECT_EQ(state.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS | CLOCAL | CREAD),
              tcflag_t{CS8 | CLOCAL | CREAD});
    EXPECT_EQ(state.c_iflag & (IXON | IXOFF | ICRNL | INLCR | IGNCR | ISTRIP | INPCK | PARMRK), 0U);
    EXPECT_EQ(state.c_oflag & OPOST, 0U);
    EXPECT_EQ(state.c_lflag & (ECHO | ECHONL | ICANON | ISIG | IEXTEN), 0U);
    kill(child, SIGTERM);
    EXPECT_EQ(Wait(child), 0);
    EXPECT_EQ(Read("err"), "");
    close(near_end);
    close(far_end);
}

}  // namespace
