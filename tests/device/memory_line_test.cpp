#include <windows.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "tests/support/memory_port.h"

namespace {

namespace kernel = platform::kernel;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using tests::kProgramTimeouts;
using tests::MemoryPort;
using tests::Platform;

void Write(HANDLE handle, const std::string& text) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    EXPECT_EQ(written, text.size());
}

std::string Read(HANDLE handle, DWORD most) {
    std::string text(most, '?');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(handle, text.data(), most, &read, nullptr));
    return text.substr(0, read);
}

TEST(MemoryLine, KeepsNoMoreThanADevicesMemory) {
    Platform platform;
    const auto line = std::make_shared<platform::device::MemoryLine>(
        CBR_9600, [](std::span<const std::uint8_t>) {},
        platform::device::MemoryLine::Pace::kAtOnce);
    std::size_t arrived = 0;
    line->Open([&](std::span<const std::uint8_t> bytes) { arrived += bytes.size(); });
    for (int piece = 0; piece < 3; ++piece)
        line->Send(std::vector<std::uint8_t>(100'000));
    platform.RunFor(milliseconds(1));
    EXPECT_EQ(arrived, 262'144U);
    line->Close();
}

enum class Outcome { kExchanges, kHearsNothing, kRefused };

TEST(MemoryLine, OnlyTheDevicesSettingsExchangeAnything) {
    struct Row {
        void (*change)(DCB&);
        Outcome outcome;
    };
    const Row rows[] = {
        {[](DCB&) {}, Outcome::kExchanges},
        {[](DCB& settings) { settings.fRtsControl = 0; }, Outcome::kExchanges},
        {[](DCB& settings) { settings.BaudRate = 115200; }, Outcome::kHearsNothing},
        {[](DCB& settings) { settings.ByteSize = 7; }, Outcome::kHearsNothing},
        {[](DCB& settings) { settings.Parity = EVENPARITY; }, Outcome::kHearsNothing},
        {[](DCB& settings) { settings.StopBits = TWOSTOPBITS; }, Outcome::kHearsNothing},
        {[](DCB& settings) { settings.DCBlength = 27; }, Outcome::kRefused},
        {[](DCB& settings) { settings.BaudRate = 0; }, Outcome::kRefused},
        {[](DCB& settings) { settings.ByteSize = 4; }, Outcome::kRefused},
        {[](DCB& settings) { settings.Parity = 5; }, Outcome::kRefused},
        {[](DCB& settings) { settings.StopBits = 3; }, Outcome::kRefused},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(&row - rows);
        Platform platform;
        MemoryPort port(platform);
        platform.Run([&] {
            const HANDLE handle = MemoryPort::Open(kProgramTimeouts);
            DCB settings{};
            EXPECT_TRUE(GetCommState(handle, &settings));
            row.change(settings);
            EXPECT_EQ(SetCommState(handle, &settings), row.outcome != Outcome::kRefused);
            // What was refused changed nothing.
            const bool exchanges = row.outcome != Outcome::kHearsNothing;
            Write(handle, "out");
            kernel::After({}, [&] { port.Send("in"); });
            EXPECT_EQ(Read(handle, 2), exchanges ? "in" : "");
            Sleep(1);
            EXPECT_EQ(port.heard, exchanges ? "out" : "");
            CloseHandle(handle);
        });
    }
}

// A free-running host that comes late finds all that has passed meanwhile, at once.
TEST(MemoryLine, CatchesUpAfterALateHost) {
    Platform platform({.mode = kernel::Mode::kFreeRunning, .speed = 1000});
    MemoryPort port(platform);
    std::vector<std::size_t> arrivals;
    port.line->Open([&](std::span<const std::uint8_t> bytes) { arrivals.push_back(bytes.size()); });
    DCB settings{};
    settings.BaudRate = 460800;
    settings.ByteSize = 8;
    port.line->ApplySettings(settings);
    kernel::After({}, [&] {
        port.Send(std::string(1'000, 'x'));
        std::this_thread::sleep_for(microseconds(200));
    });
    platform.RunFor(milliseconds(200));
    EXPECT_EQ(arrivals, std::vector<std::size_t>{1'000});
}

TEST(MemoryLine, LosesWhatIsOnTheWireWhileClosed) {
    Platform platform;
    MemoryPort port(platform);
    platform.Run([&] {
        HANDLE handle = MemoryPort::Open(kProgramTimeouts);
        kernel::After({}, [&] { port.Send(std::string(4'608, 'x')); });
        CloseHandle(handle);
        Sleep(50);
        handle = MemoryPort::Open(kProgramTimeouts);
        EXPECT_EQ(Read(handle, 4'608).size(), 2'304U);
        CloseHandle(handle);
    });
}

}  // namespace
