#include "unit/line/memory_line.h"
#include "platform/device/serial_port.h"
#include "tests/support/com9.h"
#include "tests/support/platform_test.h"

namespace tests {
namespace {

// "COM9:" on a memory line with a device of 460800 baud, 8N1.
struct MemoryPort {
    explicit MemoryPort(Platform& platform) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
    }

    void SendAfter(kernel::Duration time, std::size_t bytes) const {
        kernel::After(time, [this, bytes] { line->Send(std::vector<std::uint8_t>(bytes, 'x')); });
    }

    std::string received;
    const std::shared_ptr<unit::MemoryLine> line =
        std::make_shared<unit::MemoryLine>(460800, [this](std::span<const std::uint8_t> bytes) {
            received.append(bytes.begin(), bytes.end());
        });
};

TEST(MemoryLine, LosesBytesBeyondTheTransmitBuffer) {
    Platform platform;
    using unit::MemoryLine;
    const auto line = std::make_shared<MemoryLine>(
        CBR_9600, [](std::span<const std::uint8_t>) {}, MemoryLine::Pace::kAtOnce);
    std::size_t arrived = 0;
    line->Open([&](std::span<const std::uint8_t> bytes) { arrived += bytes.size(); });
    for (int count = 0; count < 3; ++count)
        line->Send(std::vector<std::uint8_t>(100'000));
    platform.RunFor(1ms);
    EXPECT_EQ(arrived, 262'144U);
    line->Close();
}

TEST(MemoryLine, CarriesBytesOnlyWithTheDevicesSettings) {
    enum class Outcome { kExchanges, kLosesBytes, kRefused };
    const std::pair<void (*)(DCB&), Outcome> rows[] = {
        {[](DCB&) {}, Outcome::kExchanges},
        {[](DCB& settings) { settings.fRtsControl = 0; }, Outcome::kExchanges},
        {[](DCB& settings) { settings.BaudRate = 115200; }, Outcome::kLosesBytes},
        {[](DCB& settings) { settings.ByteSize = 7; }, Outcome::kLosesBytes},
        {[](DCB& settings) { settings.Parity = EVENPARITY; }, Outcome::kLosesBytes},
        {[](DCB& settings) { settings.StopBits = TWOSTOPBITS; }, Outcome::kLosesBytes},
        {[](DCB& settings) { settings.DCBlength = 27; }, Outcome::kRefused},
        {[](DCB& settings) { settings.BaudRate = 0; }, Outcome::kRefused},
        {[](DCB& settings) { settings.ByteSize = 4; }, Outcome::kRefused},
        {[](DCB& settings) { settings.Parity = 5; }, Outcome::kRefused},
        {[](DCB& settings) { settings.StopBits = 3; }, Outcome::kRefused},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        Platform platform;
        MemoryPort port(platform);
        platform.Run([&] {
            const HANDLE handle = OpenCom9();
            DCB settings{};
            EXPECT_TRUE(GetCommState(handle, &settings));
            row.first(settings);
            EXPECT_EQ(SetCommState(handle, &settings), row.second != Outcome::kRefused);
            // A refused setting changes nothing.
            const bool exchanges = row.second != Outcome::kLosesBytes;
            EXPECT_EQ(Write(handle, "out"), 3U);
            port.SendAfter({}, 2);
            EXPECT_EQ(Read(handle, 2), exchanges ? "xx" : "");
            Sleep(1);
            EXPECT_EQ(port.received, exchanges ? "out" : "");
            CloseHandle(handle);
        });
    }
}

// A host that gets to the line late delivers all bytes that were due before, together. The clock's
// jump stands for the delay.
TEST(MemoryLine, DeliversOverdueBytesTogether) {
    Platform platform;
    MemoryPort port(platform);
    std::vector<std::size_t> arrivals;
    port.line->Open([&](std::span<const std::uint8_t> bytes) { arrivals.push_back(bytes.size()); });
    DCB settings{};
    settings.BaudRate = unit::kDvrBaudRate;
    settings.ByteSize = 8;
    port.line->ApplySettings(settings);
    port.line->Send(std::vector<std::uint8_t>(1'000));
    kernel::JumpClock(1s);
    platform.RunFor(1ms);
    EXPECT_EQ(arrivals, std::vector<std::size_t>{1'000});
    port.line->Close();
}

TEST(MemoryLine, LosesBytesThatArriveWhileClosed) {
    Platform platform;
    MemoryPort port(platform);
    platform.Run([&] {
        HANDLE handle = OpenCom9();
        port.SendAfter({}, 4'608);
        CloseHandle(handle);
        Sleep(50);
        handle = OpenCom9();
        EXPECT_EQ(Read(handle, 4'608).size(), 2'304U);
        CloseHandle(handle);
    });
}

}  // namespace
}  // namespace tests
