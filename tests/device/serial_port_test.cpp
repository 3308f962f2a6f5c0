#include "platform/device/serial_port.h"

#include <memory>
#include <span>

#include "tests/support/com9.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

// A line that delivers bytes to the port at once.
struct TestLine final : platform::device::SerialLine {
    DWORD Open(Receiver given) override {
        receiver = std::move(given);
        return ERROR_SUCCESS;
    }
    void Close() override { receiver = nullptr; }
    DWORD ReadSettings(DCB&) override { return ERROR_SUCCESS; }
    DWORD ApplySettings(const DCB&) override { return ERROR_SUCCESS; }
    std::size_t Transmit(std::span<const std::uint8_t> bytes) override { return bytes.size(); }
    void OnWritable(std::function<void()>) override {}

    Receiver receiver;
};

struct TestPort {
    explicit TestPort(Platform& platform) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
    }
    void SendAfter(kernel::Duration time, std::size_t bytes) const {
        kernel::After(time, [this, bytes] {
            if (line->receiver && bytes > 0)
                line->receiver(std::vector<std::uint8_t>(bytes, 'x'));
        });
    }

    const std::shared_ptr<TestLine> line = std::make_shared<TestLine>();
};

// Times in microseconds from the start of the read.
TEST(SerialPort, ReadsEndWhenTheTimeoutsSaySo) {
    const struct {
        const char* name;
        COMMTIMEOUTS timeouts;
        std::size_t there_before;
        std::vector<std::pair<int, std::size_t>> sendings;  // when, how many bytes
        DWORD size, read;
        int ends_at;
    } rows[] = {
        {"nothing comes", kProgramTimeouts, 0, {}, 1, 0, 100'000},
        {"the byte is there", kProgramTimeouts, 1, {}, 1, 1, 0},
        {"the byte comes", kProgramTimeouts, 0, {{40'000, 1}}, 1, 1, 40'000},
        {"it comes in time", kProgramTimeouts, 0, {{99'999, 1}}, 1, 1, 99'999},
        {"it comes too late", kProgramTimeouts, 0, {{100'001, 1}}, 1, 0, 100'000},
        {"all four come", kProgramTimeouts, 0, {{0, 4}}, 4, 4, 0},
        {"two of four come", kProgramTimeouts, 1, {{60'000, 1}}, 4, 2, 250'000},
        {"more is there than asked for", kProgramTimeouts, 9, {}, 4, 4, 0},
        {"nothing is asked for", kProgramTimeouts, 0, {}, 0, 0, 0},
        {"no limits", {}, 0, {{500'000, 3}, {1'000'000, 5}}, 8, 8, 1'000'000},
        {"a gap ends the read", {10, 0, 0, 0, 0}, 0, {{5'000, 3}, {90'000, 3}}, 8, 3, 15'000},
        {"the gap begins anew", {10, 0, 0, 0, 0}, 0, {{0, 1}, {9'000, 1}}, 8, 2, 19'000},
        {"a gap before the first byte", {10, 0, 20, 0, 0}, 0, {{15'000, 1}}, 2, 1, 20'000},
        {"the total ends before the gap", {10, 0, 12, 0, 0}, 0, {{5'000, 1}}, 8, 1, 12'000},
        {"at once, nothing there", {MAXDWORD, 0, 0, 0, 0}, 0, {{1, 1}}, 8, 0, 0},
        {"at once, some there", {MAXDWORD, 0, 0, 0, 0}, 3, {}, 8, 3, 0},
        {"the first byte only",
         {MAXDWORD, MAXDWORD, 30, 0, 0},
         0,
         {{5'000, 1}, {5'001, 1}},
         8,
         1,
         5'000},
        {"no first byte", {MAXDWORD, MAXDWORD, 30, 0, 0}, 0, {}, 8, 0, 30'000},
        {"first byte there", {MAXDWORD, MAXDWORD, 30, 0, 0}, 3, {}, 8, 3, 0},
        {"a total beyond all time", {10, MAXDWORD - 1, 9, 0, 0}, 0, {{0, 2}}, 8U << 20, 2, 10'000},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Platform platform;
        TestPort port(platform);
        platform.Run([&] {
            const HANDLE handle = OpenCom9(row.timeouts);
            port.SendAfter({}, row.there_before);
            Sleep(10);
            const kernel::Time start = kernel::Now();
            for (const auto& [at, bytes] : row.sendings)
                port.SendAfter(std::chrono::microseconds(at), bytes);
            EXPECT_EQ(Read(handle, row.size), std::string(row.read, 'x'));
            EXPECT_EQ(kernel::Now() - start, std::chrono::microseconds(row.ends_at));
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

}  // namespace
}  // namespace tests
