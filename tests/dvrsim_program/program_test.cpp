#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/process.h"

// The built dvrsim, from the other end of its line.

namespace {

namespace fs = std::filesystem;

class Dvrsim : public tests::Process {
  protected:
    pid_t StartDvr(const std::vector<std::string>& arguments) {
        const pid_t child = Start(DVRSIM_BINARY, arguments, "dvr-");
        EXPECT_TRUE(WaitUntil([&] { return Read("dvr-out").find('\n') != std::string::npos; }));
        return child;
    }
    // Returns the output of dvrsim --send.
    std::string Send(const std::string& command) {
        EXPECT_EQ(Run(DVRSIM_BINARY, {"--send", command}, "send-"), 0) << command;
        return Read("send-out");
    }
    // Waits until the state contains the text.
    bool Reaches(const std::string& text) {
        return WaitUntil([&] { return Send("state").find(text) != std::string::npos; });
    }

    // Reads up to `count` bytes; ends after ten seconds of host time without input.
    static std::string ReadBytes(int file, std::size_t count) {
        std::string bytes;
        pollfd watched{file, POLLIN, 0};
        while (bytes.size() < count && poll(&watched, 1, 10'000) > 0) {
            char byte = 0;
            if (read(file, &byte, 1) != 1)
                break;
            bytes += byte;
        }
        return bytes;
    }
};

const std::string kBooted("\xA5\x5A\x80\x00\x10\x00\x01\x00\x01\x90", 10);
const std::string kAskState("\xA5\x5A\x10\x80\x10\x00\x01\x00\x01\xA0", 10);
const std::string kNormal("\xA5\x5A\x20\x80\x10\x00\x01\x02\x01\xB2", 10);

constexpr char kNormalState[] = "\"state\": \"normal\"";
constexpr char kConnected[] = "\"connected\": true";
constexpr char kDisconnected[] = "\"connected\": false";

TEST_F(Dvrsim, RunsADvrBehindAPseudoTerminalThatIsOpenedAndClosed) {
    const std::string link = Path("link");
    const pid_t dvr = StartDvr({"--link", link, "--speed", "50", "--off", "--verbose"});
    EXPECT_TRUE(Read("dvr-out").starts_with(fs::read_symlink(link).string() + "\n"));
    EXPECT_TRUE(Reaches(kDisconnected));
    for (int round = 0; round < 2; ++round) {
        const int line = open(link.c_str(), O_RDWR | O_NOCTTY);
        ASSERT_GE(line, 0);
        termios settings{};
        EXPECT_EQ(tcgetattr(line, &settings), 0);
        EXPECT_EQ(settings.c_lflag & (ECHO | ICANON), 0U) << "raw from the start";
        // A killed process leaves exclusive use behind, which must not keep the next one out.
        EXPECT_EQ(ioctl(line, TIOCEXCL), 0);
        EXPECT_TRUE(Reaches(kConnected));
        Send("power on");
        EXPECT_EQ(ReadBytes(line, 10), kBooted);
        EXPECT_TRUE(Reaches(kNormalState));
        tcflush(line, TCIFLUSH);
        EXPECT_EQ(write(line, kAskState.data(), kAskState.size()), 10);
        EXPECT_EQ(ReadBytes(line, 10), kNormal);
        Send("line unplug");
        EXPECT_EQ(write(line, kAskState.data(), kAskState.size()), 10);
        Send("dvr indicate Key 01");
        Send("line plug");
        Send("indicate Key 02");
        EXPECT_EQ(ReadBytes(line, 10)[7], '\x02') << "bytes are dropped while it is unplugged";
        Send("power off");
        close(line);
        EXPECT_TRUE(Reaches(kDisconnected));
    }
    kill(dvr, SIGTERM);
    EXPECT_EQ(Wait(dvr), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
    EXPECT_EQ(Read("dvr-err"), "");
    for (const char* printed : {"  the DVR is normal\n", "  < request DVR_RunningState query 00\n",
                                "  > acknowledgement DVR_RunningState query 02\n"})
        EXPECT_NE(Read("dvr-out").find(printed), std::string::npos) << printed;
}

TEST_F(Dvrsim, RunsADvrOnASerialDeviceThatDisappearsAndReturns) {
    int cable = -1;
    int device = -1;
    const auto plug_in = [&] {
        char path[128] = {};
        EXPECT_EQ(openpty(&cable, &device, path, nullptr, nullptr), 0);
        // A child that inherits them would keep them open.
        fcntl(cable, F_SETFD, FD_CLOEXEC);
        fcntl(device, F_SETFD, FD_CLOEXEC);
        fs::remove(Path("tty"));
        fs::create_symlink(path, Path("tty"));
    };
    plug_in();
    const pid_t dvr = StartDvr({Path("tty"), "--speed", "50"});
    termios settings{};
    EXPECT_EQ(tcgetattr(cable, &settings), 0);
    EXPECT_EQ(cfgetospeed(&settings), B460800);
    EXPECT_EQ(settings.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), tcflag_t{CS8});
    EXPECT_EQ(settings.c_lflag & (ECHO | ICANON), 0U);
    EXPECT_EQ(ReadBytes(cable, 10), kBooted);
    // Wait for the end of the boot, so that its indications do not reach the next cable.
    EXPECT_TRUE(Reaches(kNormalState));
    close(cable);
    close(device);
    EXPECT_TRUE(Reaches(kDisconnected));
    plug_in();
    EXPECT_TRUE(Reaches(kConnected));
    EXPECT_TRUE(Reaches("\"settings\": \"460800 baud, 8N1, no flow control\""));
    Send("reset");
    EXPECT_EQ(ReadBytes(cable, 10), kBooted);
    kill(dvr, SIGINT);
    EXPECT_EQ(Wait(dvr), 0);
    EXPECT_EQ(Read("dvr-err"), "dvrsim: " + Path("tty") + ": the serial device went away\n" +
                                   "dvrsim: " + Path("tty") + ": the serial device is back\n");
    close(cable);
    close(device);
}

}  // namespace
