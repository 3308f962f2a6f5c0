#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/support/process.h"

// The built dvrsim, from its standard input, from another process and from the other end of its
// line.

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class Dvrsim : public tests::Process {
  protected:
    pid_t StartDvr(const std::vector<std::string>& arguments) {
        const pid_t child = Start(DVRSIM_BINARY, arguments, "dvr-");
        EXPECT_TRUE(WaitUntil([&] { return Read("dvr-out").find('\n') != std::string::npos; }));
        return child;
    }
    // Returns the output of dvrsim --send; checks its exit status.
    std::string Send(const std::string& command, int status = 0) {
        EXPECT_EQ(Run(DVRSIM_BINARY, {"--send", command}, "send-"), status) << command;
        return Read(status == 0 ? "send-out" : "send-err");
    }
    json State() { return json::parse(Send("state")); }
    bool Reaches(const char* state) {
        return WaitUntil([&] { return State()["dvr"]["state"] == state; });
    }
    bool Connects(bool connected) {
        return WaitUntil([&] { return State()["line"]["connected"] == connected; });
    }
    int End(pid_t dvr, int signal) {
        kill(dvr, signal);
        return Wait(dvr);
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

TEST_F(Dvrsim, RunsADvrBehindAPseudoTerminalThatIsOpenedAndClosed) {
    const std::string link = Path("link");
    const pid_t dvr = StartDvr({"--link", link, "--speed", "50", "--off"});
    EXPECT_EQ(fs::read_symlink(link).string() + "\n", Read("dvr-out"));
    EXPECT_EQ(State()["line"]["connected"], false);
    for (int round = 0; round < 2; ++round) {
        const int line = open(link.c_str(), O_RDWR | O_NOCTTY);
        ASSERT_GE(line, 0);
        termios settings{};
        EXPECT_EQ(tcgetattr(line, &settings), 0);
        EXPECT_EQ(settings.c_lflag & (ECHO | ICANON), 0U) << "raw from the start";
        // A killed process leaves exclusive use behind, which must not keep the next one out.
        EXPECT_EQ(ioctl(line, TIOCEXCL), 0);
        EXPECT_TRUE(Connects(true));
        Send("power on");
        EXPECT_EQ(ReadBytes(line, 10), kBooted);
        EXPECT_TRUE(Reaches("normal"));
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
        EXPECT_TRUE(Connects(false));
    }
    EXPECT_EQ(End(dvr, SIGTERM), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
    EXPECT_EQ(Read("dvr-err"), "");
    EXPECT_EQ(Send("state", 3), "dvrsim: no dvrsim named dvrsim is running\n");
}

TEST_F(Dvrsim, UpdatesFailsAndRefusesByCommand) {
    const pid_t dvr = StartDvr({"--speed", "200", "--firmware", "14.01.01.V0.00.01"});
    EXPECT_TRUE(Reaches("normal"));
    EXPECT_EQ(
        Send("card with image 1.2", 1),
        "dvrsim: the card cannot be made; allowed are versions of 17 to 63 characters without "
        "spaces, such as 14.09.01.V1.02.03, 100 of them in all, if the host has room\n");
    Send("card with image 15.01.01.V2.00.00");
    EXPECT_EQ(Send("card in", 1), "dvrsim: a card is in already; take it out first\n");
    Send("fault fail-at 57");
    Send("reset");
    EXPECT_TRUE(Reaches("update-failed"));
    EXPECT_EQ(State()["dvr"]["percent"], 57);
    EXPECT_EQ(State()["dvr"]["firmware"], "14.01.01.V0.00.01");
    EXPECT_EQ(State()["dvr"]["card"]["image"], "15.01.01.V2.00.00");
    Send("fault none");
    Send("reset");
    EXPECT_TRUE(Reaches("update-finished"));
    Send("card out");
    Send("card out", 1);
    EXPECT_EQ(Run(DVRSIM_BINARY, {}, "second-"), 1);
    EXPECT_EQ(Read("second-err"),
              "dvrsim: a dvrsim named dvrsim is running already; give this one another --name\n");
    Send("quit");
    EXPECT_EQ(Wait(dvr), 0);
}

TEST_F(Dvrsim, ExecutesItsStandardInput) {
    const auto execute = [this](const char* input) {
        EXPECT_EQ(Run("/bin/sh", {"-c", std::string(input) + " | " DVRSIM_BINARY}), 0);
    };
    // The last line has no line end.
    execute("printf 'power off\\n\\nfault slow 0\\nreset\\nstate\\nhelp\\nquit'");
    EXPECT_EQ(Read("err"),
              "dvrsim: '0' is not allowed after 'fault slow'; allowed is FACTOR (a whole number "
              "from 1 to 100)\n"
              "dvrsim: the DVR is off; power it on\n");
    EXPECT_NE(Read("out").find("\"state\": \"off\""), std::string::npos);
    EXPECT_NE(Read("out").find("\n[dvr] reset\n"), std::string::npos);
    // A line that is too long is reported once, and no part of it is executed.
    execute("(head -c 1000000 /dev/zero; printf 'state\nquit\n')");
    EXPECT_EQ(Read("err"),
              "dvrsim: a line of input is too long; at most 65536 bytes are allowed\n");
    EXPECT_EQ(Read("out").find("{"), std::string::npos);
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
    EXPECT_TRUE(Reaches("normal"));
    close(cable);
    close(device);
    EXPECT_TRUE(Connects(false));
    plug_in();
    EXPECT_TRUE(Connects(true));
    EXPECT_EQ(State()["line"]["settings"], "460800 baud, 8N1, no flow control");
    Send("reset");
    EXPECT_EQ(ReadBytes(cable, 10), kBooted);
    EXPECT_EQ(End(dvr, SIGINT), 0);
    EXPECT_EQ(Read("dvr-err"), "dvrsim: " + Path("tty") + ": the serial device went away\n" +
                                   "dvrsim: " + Path("tty") + ": the serial device is back\n");
    close(cable);
    close(device);
}

TEST_F(Dvrsim, ReportsAProblemInOneLine) {
    EXPECT_EQ(Run(DVRSIM_BINARY, {"/dev/no-such-tty"}), 1);
    EXPECT_EQ(
        Read("err"),
        "dvrsim: /dev/no-such-tty: cannot open the serial device: No such file or directory\n");
    EXPECT_EQ(Run(DVRSIM_BINARY, {"--link", Path("err")}), 1);
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(Path("err"))))
        << "a file must not be replaced";
}

}  // namespace
