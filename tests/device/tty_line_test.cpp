#include "platform/device/tty_line.h"

#include <windows.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <mutex>
#include <string>
#include <vector>

#include "platform/device/serial_port.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/crew.h"
#include "tests/support/platform_fixture.h"

namespace {

namespace kernel = platform::kernel;
using platform::device::SerialDriver;
using platform::device::TtyLine;
using tests::Platform;

// A unit whose "COM9:" is a device of the host; at the other end of that, this test.
class Tty : public testing::Test {
  protected:
    Tty() {
        char name[128] = {};
        int device = -1;
        EXPECT_EQ(openpty(&far_end, &device, name, nullptr, nullptr), 0);
        close(device);
        // Keeps the device alive while the port is closed.
        keeper = open(name, O_RDWR | O_NOCTTY);
        UseDevice(name);
    }
    ~Tty() override {
        HangUp();
        close(keeper);
    }

    void UseDevice(const std::string& name) {
        platform.board.drivers[L"COM9:"] = std::make_shared<SerialDriver>(
            std::make_shared<TtyLine>(name, [this](const std::string& problem) {
                const std::scoped_lock lock(mutex);
                problems.push_back(problem);
            }));
    }

    static HANDLE Open(COMMTIMEOUTS timeouts) {
        const HANDLE port = CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(port, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(SetCommTimeouts(port, &timeouts));
        return port;
    }

    void HangUp() {
        if (far_end >= 0)
            close(std::exchange(far_end, -1));
    }

    std::vector<std::string> Problems() {
        const std::scoped_lock lock(mutex);
        return problems;
    }

    int far_end = -1;
    int keeper = -1;
    std::mutex mutex;
    std::vector<std::string> problems;
    Platform platform{{.mode = kernel::Mode::kFreeRunning, .speed = 20}};
};

constexpr COMMTIMEOUTS kPatient{0, 0, 60'000, 0, 60'000};

TEST_F(Tty, CarriesEveryByteValueBothWays) {
    platform.Run([&] {
        // Until the port is opened, the host's terminal echoes.
        char echo[5];
        EXPECT_EQ(write(far_end, "stale", 5), 5);
        EXPECT_EQ(read(far_end, echo, 5), 5);
        const HANDLE port = Open(kPatient);
        std::string all;
        for (int value = 0; value < 256; ++value)
            all += static_cast<char>(value);
        DWORD count = 0;
        EXPECT_TRUE(WriteFile(port, all.data(), 256, &count, nullptr));
        EXPECT_EQ(count, 256U);
        std::string heard;
        while (heard.size() < 256) {
            char buffer[256];
            const ssize_t size = read(far_end, buffer, sizeof buffer);
            ASSERT_GT(size, 0);
            heard.append(buffer, static_cast<std::size_t>(size));
        }
        EXPECT_EQ(heard, all);
        EXPECT_EQ(write(far_end, all.data(), all.size()), 256);
        std::string got;
        for (char byte = 0; got.size() < 256; got += byte) {
            EXPECT_TRUE(ReadFile(port, &byte, 1, &count, nullptr));
            ASSERT_EQ(count, 1U);
        }
        EXPECT_EQ(got, all);
        pollfd echoed{far_end, POLLIN, 0};
        EXPECT_EQ(poll(&echoed, 1, 0), 0);
        CloseHandle(port);
    });
    EXPECT_TRUE(Problems().empty());
}

TEST_F(Tty, SettingsReachTheDeviceAndAreReadBack) {
    platform.Run([&] {
        struct Row {
            DWORD baud;
            BYTE size;
            BYTE parity;
            BYTE stop;
            bool accepted;
            speed_t speed;
            tcflag_t flags;
        };
        // A pseudo-terminal has eight bits and no parity whatever is asked.
        const Row rows[] = {
            {460800, 8, NOPARITY, ONESTOPBIT, true, B460800, CS8},
            {115200, 8, NOPARITY, TWOSTOPBITS, true, B115200, CS8 | CSTOPB},
            {9600, 8, NOPARITY, ONESTOPBIT, true, B9600, CS8},
            {460801, 8, NOPARITY, ONESTOPBIT, false, B9600, CS8},
            {9600, 8, MARKPARITY, ONESTOPBIT, false, B9600, CS8},
            {9600, 8, NOPARITY, ONE5STOPBITS, false, B9600, CS8},
        };
        const HANDLE port = Open(kPatient);
        for (const Row& row : rows) {
            DCB settings{};
            EXPECT_TRUE(GetCommState(port, &settings));
            settings.BaudRate = row.baud;
            settings.ByteSize = row.size;
            settings.Parity = row.parity;
            settings.StopBits = row.stop;
            SetLastError(0);
            EXPECT_EQ(SetCommState(port, &settings), row.accepted) << row.baud;
            EXPECT_EQ(GetLastError(), row.accepted ? 0 : ERROR_INVALID_PARAMETER);
            termios state{};
            EXPECT_EQ(tcgetattr(keeper, &state), 0);
            EXPECT_EQ(cfgetospeed(&state), row.speed);
            EXPECT_EQ(cfgetispeed(&state), row.speed);
            EXPECT_EQ(state.c_cflag & (CSIZE | CSTOPB | PARENB | CRTSCTS), row.flags);
            EXPECT_EQ(state.c_lflag & (ICANON | ECHO | ISIG), 0U);
            EXPECT_EQ(state.c_oflag & OPOST, 0U);
            if (!row.accepted)
                continue;
            DCB back{};
            EXPECT_TRUE(GetCommState(port, &back));
            EXPECT_EQ(back.DCBlength, sizeof back);
            EXPECT_EQ(back.BaudRate, row.baud);
            EXPECT_EQ(back.ByteSize, row.size);
            EXPECT_EQ(back.Parity, row.parity);
            EXPECT_EQ(back.StopBits, row.stop);
        }
        CloseHandle(port);
    });
}

TEST_F(Tty, WriteToAFullLineTimesOutAndGoesOnWhenThereIsRoom) {
    platform.Run([&] {
        const HANDLE port = Open({0, 0, 100, 0, 100});
        const std::string much(1 << 20, 'x');
        DWORD first = 0;
        const kernel::Time start = kernel::Now();
        EXPECT_TRUE(WriteFile(port, much.data(), 1 << 20, &first, nullptr));
        EXPECT_GE(kernel::Now() - start, std::chrono::milliseconds(100));
        EXPECT_GT(first, 0U);
        EXPECT_LT(first, 1U << 20);

        COMMTIMEOUTS patient = kPatient;
        SetCommTimeouts(port, &patient);
        std::size_t drained = 0;
        std::thread far_reader([&] {
            std::vector<char> buffer(4096);
            while (drained < first + much.size() / 2) {
                const ssize_t size = read(far_end, buffer.data(), buffer.size());
                if (size <= 0)
                    break;
                drained += static_cast<std::size_t>(size);
            }
        });
        // Two writers wait for the same room.
        tests::Crew crew;
        for (int writer = 0; writer < 2; ++writer)
            crew.Start([&] {
                DWORD written = 0;
                EXPECT_TRUE(WriteFile(port, much.data(), 1 << 18, &written, nullptr));
                EXPECT_EQ(written, 1U << 18);
            });
        crew.Join();
        far_reader.join();
        EXPECT_EQ(drained, first + much.size() / 2);
        CloseHandle(port);
    });
}

TEST_F(Tty, DeviceThatGoesAwayIsReportedOnceAndNothingHangs) {
    platform.Run([&] {
        const HANDLE port = Open(kPatient);
        EXPECT_EQ(write(far_end, "last", 4), 4);
        char buffer[8] = {};
        DWORD count = 0;
        EXPECT_TRUE(ReadFile(port, buffer, 4, &count, nullptr));
        EXPECT_EQ(std::string(buffer, count), "last");
        COMMTIMEOUTS short_ones{0, 50, 50, 10, 100};
        SetCommTimeouts(port, &short_ones);
        HangUp();
        while (Problems().empty())
            Sleep(10);
        EXPECT_TRUE(ReadFile(port, buffer, 1, &count, nullptr));
        EXPECT_EQ(count, 0U);
        EXPECT_TRUE(WriteFile(port, "gone", 4, &count, nullptr));
        EXPECT_EQ(count, 0U);
        EXPECT_TRUE(CloseHandle(port));
    });
    ASSERT_EQ(Problems().size(), 1U);
    EXPECT_NE(Problems()[0].find("went away"), std::string::npos);
}

TEST_F(Tty, CloseEndsAReadThatWaits) {
    platform.Run([&] {
        for (int round = 0; round < 20; ++round) {
            const HANDLE port = Open({});
            tests::Crew crew;
            crew.Start([port] {
                char byte = 0;
                DWORD count = 0;
                EXPECT_FALSE(ReadFile(port, &byte, 1, &count, nullptr));
                EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
            });
            Sleep(static_cast<DWORD>(round));
            EXPECT_TRUE(CloseHandle(port));
        }
    });
}

TEST_F(Tty, PathsThatCannotBeOpenedAreErrorsWithOneClearLine) {
    platform.Run([&] {
        struct Row {
            const char* path;
            DWORD error;
            const char* said;
        };
        const Row rows[] = {
            {"/dev/no-such-tty", ERROR_DEV_NOT_EXIST, "cannot open"},
            {"/dev/null", ERROR_GEN_FAILURE, "not a serial device"},
            {"/proc", ERROR_GEN_FAILURE, "cannot open"},
        };
        for (const Row& row : rows) {
            problems.clear();
            UseDevice(row.path);
            EXPECT_EQ(CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                  0, nullptr),
                      INVALID_HANDLE_VALUE);
            EXPECT_EQ(GetLastError(), row.error) << row.path;
            ASSERT_EQ(Problems().size(), 1U);
            EXPECT_EQ(Problems()[0].rfind(std::string(row.path) + ": " + row.said, 0), 0U)
                << Problems()[0];
        }
    });
}

}  // namespace
