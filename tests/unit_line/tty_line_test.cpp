#include "unit/line/tty_line.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <mutex>
#include <utility>

#include "platform/device/serial_port.h"
#include "tests/support/com9.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

// A unit whose "COM9:" is a device of the host, with the test at its far end.
class Tty : public testing::Test {
  protected:
    Tty() { UseDevice(NewDevice()); }
    ~Tty() override {
        close(far_end);
        close(keeper);
    }

    std::string NewDevice() {
        char name[128] = {};
        EXPECT_EQ(openpty(&far_end, &keeper, name, nullptr, nullptr), 0);
        return name;
    }

    void UseDevice(const std::string& name) {
        const auto note = [this](const std::string& problem) {
            const std::scoped_lock lock(mutex);
            problems.push_back(problem);
        };
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(
            std::make_shared<unit::TtyLine>(name, note));
    }

    std::string ReadFarEnd(std::size_t size) const {
        std::string text(size, '?');
        for (std::size_t done = 0; done < size;) {
            const ssize_t count = read(far_end, &text[done], size - done);
            if (count <= 0)
                return text.substr(0, done);
            done += static_cast<std::size_t>(count);
        }
        return text;
    }

    std::vector<std::string> TakeProblems() {
        const std::scoped_lock lock(mutex);
        return std::exchange(problems, {});
    }
    void AwaitProblem(const std::string& expected) {
        std::vector<std::string> said;
        for (; said.empty(); said = TakeProblems())
            Sleep(10);
        EXPECT_EQ(said, std::vector<std::string>{expected});
    }

    // Keeps the device open while the port is closed.
    int keeper = -1;
    int far_end = -1;
    std::mutex mutex;
    std::vector<std::string> problems;
    Platform platform{{.mode = kernel::Mode::kFreeRunning, .speed = 20}};
};

constexpr COMMTIMEOUTS kPatient{0, 0, 60'000, 0, 60'000};

TEST_F(Tty, AppliesSettingsAndCarriesEveryByteValueBothWays) {
    platform.Run([&] {
        // The host's terminal echoes until the port is opened.
        EXPECT_EQ(write(far_end, "stale", 5), 5);
        EXPECT_EQ(ReadFarEnd(5), "stale");
        const HANDLE port = OpenCom9(kPatient);
        termios state{};
        EXPECT_EQ(tcgetattr(keeper, &state), 0);
        EXPECT_EQ(cfgetospeed(&state), B460800);
        EXPECT_EQ(cfgetispeed(&state), B460800);
        EXPECT_EQ(state.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), tcflag_t{CS8});
        DCB settings{};
        EXPECT_TRUE(GetCommState(port, &settings));
        settings.BaudRate = 460801;
        EXPECT_FALSE(SetCommState(port, &settings));
        EXPECT_TRUE(GetCommState(port, &settings));
        EXPECT_EQ(settings.BaudRate, 460800U);
        EXPECT_EQ(settings.ByteSize, 8);

        std::string all;
        for (int value = 0; value < 256; ++value)
            all += static_cast<char>(value);
        EXPECT_EQ(Write(port, all), 256U);
        EXPECT_EQ(ReadFarEnd(256), all);
        EXPECT_EQ(write(far_end, all.data(), all.size()), 256);
        std::string got(256, '?');
        DWORD count = 0;
        EXPECT_TRUE(ReadFile(port, got.data(), 256, &count, nullptr));
        EXPECT_EQ(got, all);
        pollfd echoed{far_end, POLLIN, 0};
        EXPECT_EQ(poll(&echoed, 1, 0), 0);
        CloseHandle(port);
    });
    EXPECT_TRUE(TakeProblems().empty());
}

TEST_F(Tty, WriteToAFullLineTimesOutAndContinuesWhenWritable) {
    platform.Run([&] {
        const HANDLE port = OpenCom9({0, 0, 100, 0, 100});
        const DWORD first = Write(port, std::string(1 << 20, 'x'));
        EXPECT_TRUE(first > 0 && first < 1U << 20) << first;

        COMMTIMEOUTS patient = kPatient;
        SetCommTimeouts(port, &patient);
        // Two writers wait for the line to become writable.
        Crew crew;
        for (int writer = 0; writer < 2; ++writer)
            crew.Start([&] { EXPECT_EQ(Write(port, std::string(1 << 18, 'x')), 1U << 18); });
        EXPECT_EQ(ReadFarEnd(first + (2 << 18)).size(), first + (2 << 18));
        crew.Join();
        CloseHandle(port);
    });
}

TEST_F(Tty, ReconnectsADeviceOnTheSameHandleWithItsSettings) {
    // The path leads to one device and later to another, as when an adapter is reconnected.
    const std::string path = testing::TempDir() + "tolvane-tty-" + std::to_string(getpid());
    std::filesystem::create_symlink(ttyname(keeper), path);
    UseDevice(path);
    platform.Run([&] {
        const HANDLE port = OpenCom9({0, 50, 50, 10, 100});
        for (int round = 0; round < 2; ++round) {
            close(far_end);
            AwaitProblem(path + ": the serial device went away");
            EXPECT_EQ(Read(port, 1), "");
            EXPECT_EQ(Write(port, "lost"), 0U);
            DCB settings{};
            EXPECT_TRUE(GetCommState(port, &settings));
            EXPECT_EQ(settings.BaudRate, 460800U);

            close(keeper);
            const std::string name = NewDevice();
            std::filesystem::remove(path);
            std::filesystem::create_symlink(name, path);
            AwaitProblem(path + ": the serial device is back");
            termios state{};
            EXPECT_EQ(tcgetattr(keeper, &state), 0);
            EXPECT_EQ(cfgetospeed(&state), B460800);
            EXPECT_EQ(write(far_end, "x", 1), 1);
            std::string got;
            while (got.empty())
                got = Read(port, 1);
            EXPECT_EQ(got, "x");
            EXPECT_EQ(Write(port, "back"), 4U);
            EXPECT_EQ(ReadFarEnd(4), "back");
        }
        CloseHandle(port);
    });
    std::filesystem::remove(path);
    EXPECT_TRUE(TakeProblems().empty());
}

TEST_F(Tty, ReportsPathsThatCannotBeOpened) {
    const auto expect_refused = [&](const std::string& path, DWORD error, const char* problem) {
        UseDevice(path);
        ExpectFails(error, [] {
            return CreateFileW(L"COM9:", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr) !=
                   INVALID_HANDLE_VALUE;
        });
        const std::vector<std::string> said = TakeProblems();
        ASSERT_EQ(said.size(), 1U);
        EXPECT_TRUE(said[0].starts_with(path + ": " + problem)) << said[0];
    };
    platform.Run([&] {
        expect_refused("/dev/no-such-tty", ERROR_DEV_NOT_EXIST, "cannot open");
        expect_refused("/dev/null", ERROR_GEN_FAILURE, "not a serial device");
        expect_refused("/proc", ERROR_GEN_FAILURE, "cannot open");
    });
}

}  // namespace
}  // namespace tests
