#include "unit/line/line_tap.h"

#include <gtest/gtest.h>

#include "tests/unit_line/tapped_port.h"

namespace tests {
namespace {

namespace kernel = platform::kernel;
using std::chrono::microseconds;
using Pieces = std::vector<TappedPort::Piece>;

std::string Read(HANDLE handle, DWORD most) {
    std::string text(most, '?');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(handle, text.data(), most, &read, nullptr));
    return text.substr(0, read);
}

void Write(HANDLE handle, const std::string& text) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    EXPECT_EQ(written, text.size());
}

TEST(LineTap, TellsWhatPassesInBothDirectionsWhenItPasses) {
    Platform platform;
    TappedPort line(platform);
    platform.Run([&] {
        const HANDLE handle = MemoryPort::Open(kProgramTimeouts);
        line.Start();
        Write(handle, "out");
        kernel::After({}, [&] { line.port.Send("in"); });
        EXPECT_EQ(Read(handle, 2), "in");
        Sleep(1);
        EXPECT_EQ(line.port.heard, "out");
        EXPECT_EQ(line.to_dvr, (Pieces{{0, "out"}}));
        EXPECT_EQ(line.to_unit, (Pieces{{22, "i"}, {44, "n"}}));
        CloseHandle(handle);
        kernel::After({}, [&] { line.port.Send("to nobody"); });
        Sleep(1);
        EXPECT_EQ(line.to_unit.size(), 2U) << "a closed port is given nothing";
    });
}

TEST(LineTap, NothingPassesWhileThePlugIsOut) {
    Platform platform;
    TappedPort line(platform);
    platform.Run([&] {
        const HANDLE handle = MemoryPort::Open(kProgramTimeouts);
        // The bytes arrive 22, 44, 66, 87, 109 after the start.
        kernel::After({}, [&] { line.port.Send("12345"); });
        kernel::After(microseconds(40), [&] { line.tap->SetPlugged(false); });
        kernel::After(microseconds(70), [&] { line.tap->SetPlugged(true); });
        EXPECT_EQ(Read(handle, 5), "145");

        line.tap->SetPlugged(false);
        line.Start();
        Write(handle, "to nobody");
        Sleep(1);
        line.tap->SetPlugged(true);
        Write(handle, "there");
        Sleep(1);
        EXPECT_EQ(line.port.heard, "there");
        EXPECT_EQ(line.to_dvr, (Pieces{{0, "to nobody"}, {1000, "there"}}));
        CloseHandle(handle);
    });
}

}  // namespace
}  // namespace tests
