#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/support/platform_test.h"
#include "tests/support/memory_port.h"

namespace {

namespace kernel = platform::kernel;
using std::chrono::microseconds;
using tests::kProgramTimeouts;
using tests::MemoryPort;
using tests::Platform;

struct Sending {
    int at;
    std::size_t bytes;
};

// Times in microseconds from the start of the read. A byte takes 21.7 on the wire.
struct ReadCase {
    const char* name;
    COMMTIMEOUTS timeouts;
    std::size_t there_before;
    std::vector<Sending> sendings;
    DWORD size;
    DWORD read;
    int ends_at;
};

const ReadCase kReads[] = {
    {"nothing comes", kProgramTimeouts, 0, {}, 1, 0, 100'000},
    {"the byte is there", kProgramTimeouts, 1, {}, 1, 1, 0},
    {"the byte comes", kProgramTimeouts, 0, {{40'000, 1}}, 1, 1, 40'022},
    {"it comes at the last moment", kProgramTimeouts, 0, {{99'978, 1}}, 1, 1, 100'000},
    {"it comes too late", kProgramTimeouts, 0, {{99'979, 1}}, 1, 0, 100'000},
    {"all four come", kProgramTimeouts, 0, {{0, 4}}, 4, 4, 87},
    {"two of four come", kProgramTimeouts, 1, {{60'000, 1}}, 4, 2, 250'000},
    {"more is there than asked for", kProgramTimeouts, 9, {}, 4, 4, 0},
    {"nothing is asked for", kProgramTimeouts, 0, {}, 0, 0, 0},
    {"no limits", {}, 0, {{500'000, 3}, {1'000'000, 5}}, 8, 8, 1'000'109},
    {"a gap ends the read", {10, 0, 0, 0, 0}, 0, {{5'000, 3}, {90'000, 3}}, 8, 3, 15'066},
    {"the gap begins anew", {10, 0, 0, 0, 0}, 0, {{0, 1}, {9'000, 1}}, 8, 2, 19'022},
    {"a gap before the first byte", {10, 0, 20, 0, 0}, 0, {{15'000, 1}}, 2, 1, 20'000},
    {"the total ends before the gap", {10, 0, 12, 0, 0}, 0, {{5'000, 1}}, 8, 1, 12'000},
    {"at once, nothing there", {MAXDWORD, 0, 0, 0, 0}, 0, {{0, 1}}, 8, 0, 0},
    {"at once, some there", {MAXDWORD, 0, 0, 0, 0}, 3, {}, 8, 3, 0},
    {"the first byte only", {MAXDWORD, MAXDWORD, 30, 0, 0}, 0, {{5'000, 2}}, 8, 1, 5'022},
    {"no first byte", {MAXDWORD, MAXDWORD, 30, 0, 0}, 0, {}, 8, 0, 30'000},
    {"first byte there", {MAXDWORD, MAXDWORD, 30, 0, 0}, 3, {}, 8, 3, 0},
    {"a total beyond all time", {10, MAXDWORD - 1, 9, 0, 0}, 0, {{0, 2}}, 8U << 20, 2, 10'044},
};

TEST(SerialPort, ReadsEndWhenTheTimeoutsSaySo) {
    for (const ReadCase& row : kReads) {
        SCOPED_TRACE(row.name);
        Platform platform;
        MemoryPort port(platform);
        platform.Run([&] {
            const HANDLE handle = MemoryPort::Open(row.timeouts);
            kernel::After({}, [&] { port.Send(std::string(row.there_before, 'x')); });
            Sleep(10);
            const kernel::Time start = kernel::Now();
            for (const Sending& sending : row.sendings)
                kernel::After(microseconds(sending.at),
                              [&] { port.Send(std::string(sending.bytes, 'x')); });
            std::string buffer(row.size, '?');
            DWORD read = 77;
            EXPECT_TRUE(ReadFile(handle, buffer.data(), row.size, &read, nullptr));
            EXPECT_EQ(read, row.read);
            EXPECT_EQ(kernel::Now() - start, microseconds(row.ends_at));
            EXPECT_EQ(buffer.find_first_not_of('x'),
                      row.read == row.size ? std::string::npos : row.read);
            Sleep(200);
            CloseHandle(handle);
        });
    }
}

TEST(SerialPort, OneHandleAtATimeAndAWaitingReadEndsWithIt) {
    Platform platform;
    MemoryPort port(platform);
    platform.Run([] {
        const HANDLE handle = MemoryPort::Open({});
        EXPECT_EQ(CreateFileW(L"COM9:", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr),
                  INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
        tests::Crew crew;
        crew.Start([handle] {
            char byte = 0;
            DWORD read = 1;
            EXPECT_FALSE(ReadFile(handle, &byte, 1, &read, nullptr));
            EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
            EXPECT_EQ(read, 0U);
        });
        Sleep(100);
        EXPECT_TRUE(CloseHandle(handle));
        crew.Join();
        EXPECT_TRUE(CloseHandle(MemoryPort::Open({}))) << "free again";
    });
}

TEST(CreateFile, OpensDevicesThatAreThereAndNothingElse) {
    Platform platform;
    MemoryPort port(platform);
    platform.Run([] {
        struct Row {
            const wchar_t* name;
            DWORD creation;
            DWORD flags;
            DWORD error;
        };
        const Row rows[] = {
            {L"COM9:", OPEN_EXISTING, 0, ERROR_SUCCESS},
            {L"COM7:", OPEN_EXISTING, 0, ERROR_DEV_NOT_EXIST},
            {L"COM9", OPEN_EXISTING, 0, ERROR_FILE_NOT_FOUND},
            {L"", OPEN_EXISTING, 0, ERROR_FILE_NOT_FOUND},
            {nullptr, OPEN_EXISTING, 0, ERROR_INVALID_PARAMETER},
            {L"COM9:", CREATE_ALWAYS, 0, ERROR_INVALID_PARAMETER},
            {L"COM9:", OPEN_EXISTING, FILE_FLAG_OVERLAPPED, ERROR_INVALID_PARAMETER},
        };
        for (const Row& row : rows) {
            SetLastError(0);
            const HANDLE handle = CreateFileW(row.name, GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                              row.creation, row.flags, nullptr);
            EXPECT_EQ(GetLastError(), row.error) << testing::PrintToString(row.name);
            EXPECT_EQ(CloseHandle(handle), row.error == ERROR_SUCCESS);
        }
    });
}

}  // namespace
