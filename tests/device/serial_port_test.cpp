#include "platform/device/serial_port.h"

#include <array>
#include <bit>
#include <memory>
#include <sstream>

#include "tests/support/cases.h"
#include "tests/support/com9.h"
#include "tests/support/platform_test.h"
#include "unit/line/memory_line.h"

namespace tests {
namespace {

using unit::MemoryLine;

// "COM9:" on a line that carries bytes at once.
struct TestPort {
    explicit TestPort(Platform& platform) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
    }
    void SendAfter(kernel::Duration time, std::size_t bytes) const {
        kernel::After(time, [=, to = line] { to->Send(std::vector<std::uint8_t>(bytes, 'x')); });
    }

    const std::shared_ptr<MemoryLine> line = std::make_shared<MemoryLine>(
        460800, [](auto) {}, MemoryLine::Pace::kAtOnce);
};

TEST(SerialPort, ReadsEndWhenTheTimeoutsSaySo) {
    const auto cases = CasesFrom(DEVICE_CASES "/read-timeouts.txt");
    ASSERT_FALSE(cases.empty());
    for (const auto& [input, result] : cases) {
        Platform platform;
        TestPort port(platform);
        platform.Run([&, input = input, result = result] {
            std::istringstream numbers(input);
            COMMTIMEOUTS limits{};
            std::size_t there = 0;
            DWORD size = 0;
            numbers >> limits.ReadIntervalTimeout >> limits.ReadTotalTimeoutMultiplier >>
                limits.ReadTotalTimeoutConstant >> there >> size;
            const HANDLE handle = OpenCom9(limits);
            port.SendAfter({}, there);
            Sleep(10);
            const kernel::Time start = kernel::Now();
            std::size_t bytes = 0;
            for (int at = 0; numbers >> at >> bytes;)
                port.SendAfter(std::chrono::microseconds(at), bytes);
            const std::size_t read = Read(handle, size).size();
            const auto passed = kernel::Now() - start;
            EXPECT_EQ(std::to_string(read) + " " + std::to_string(passed.count()), result) << input;
            Sleep(200);
            CloseHandle(handle);
        });
    }
}

PLATFORM_TEST(SerialPort, HasOneHandleWhoseClosingEndsAWaitingRead) {
    const TestPort port(platform);
    const HANDLE handle = OpenCom9({});
    ExpectFails(ERROR_ACCESS_DENIED, [] {
        return CreateFileW(L"COM9:", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr) !=
               INVALID_HANDLE_VALUE;
    });
    Crew crew([handle] {
        char byte = 0;
        DWORD read = 1;
        ExpectFails(ERROR_INVALID_HANDLE,
                    [&] { return ReadFile(handle, &byte, 1, &read, nullptr); });
        EXPECT_EQ(read, 0U);
    });
    Sleep(100);
    EXPECT_TRUE(CloseHandle(handle));
    crew.Join();
    EXPECT_TRUE(CloseHandle(OpenCom9({}))) << "free again";
}

PLATFORM_TEST(CreateFile, OpensOnlyLoadedDevices) {
    const TestPort port(platform);
    const auto expect = [](DWORD error, LPCWSTR name, DWORD creation = OPEN_EXISTING,
                           DWORD flags = 0) {
        SetLastError(0);
        const HANDLE handle =
            CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, creation, flags, nullptr);
        EXPECT_EQ(GetLastError(), error) << testing::PrintToString(name);
        EXPECT_EQ(CloseHandle(handle), error == ERROR_SUCCESS);
    };
    expect(ERROR_SUCCESS, L"COM9:");
    expect(ERROR_DEV_NOT_EXIST, L"COM7:");
    expect(ERROR_FILE_NOT_FOUND, L"COM9");
    expect(ERROR_FILE_NOT_FOUND, L"");
    expect(ERROR_INVALID_PARAMETER, nullptr);
    expect(ERROR_INVALID_PARAMETER, L"COM9:", CREATE_ALWAYS);
    expect(ERROR_INVALID_PARAMETER, L"COM9:", OPEN_EXISTING, FILE_FLAG_OVERLAPPED);
}

TEST(Dcb, FlagsLieWhereTheSerialDriverLooksForThem) {
    for (std::size_t bit = 0; bit < 15; ++bit) {
        const auto dcb = std::bit_cast<DCB>(std::array<DWORD, 7>{0, 0, 1U << bit});
        const DWORD flags = dcb.fBinary | dcb.fParity << 1 | dcb.fOutxCtsFlow << 2 |
                            dcb.fOutxDsrFlow << 3 | dcb.fDtrControl << 4 |
                            dcb.fDsrSensitivity << 6 | dcb.fTXContinueOnXoff << 7 | dcb.fOutX << 8 |
                            dcb.fInX << 9 | dcb.fErrorChar << 10 | dcb.fNull << 11 |
                            dcb.fRtsControl << 12 | dcb.fAbortOnError << 14;
        EXPECT_EQ(flags, 1U << bit);
    }
}

}  // namespace
}  // namespace tests
