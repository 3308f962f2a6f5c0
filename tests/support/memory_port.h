#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "platform/device/memory_line.h"
#include "platform/device/serial_port.h"
#include "platform/kernel/clock.h"
#include "tests/support/platform_fixture.h"

namespace tests {

// "COM9:" with a device of 460800 baud, 8N1 at the other end of its wires.
struct MemoryPort {
    explicit MemoryPort(Platform& platform) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
    }

    // Opens the port with the device's settings and these time-outs.
    static HANDLE Open(const COMMTIMEOUTS& timeouts) {
        const HANDLE port = CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        DCB settings{};
        settings.DCBlength = sizeof settings;
        EXPECT_TRUE(GetCommState(port, &settings));
        settings.BaudRate = 460800;
        settings.ByteSize = 8;
        settings.Parity = NOPARITY;
        settings.StopBits = ONESTOPBIT;
        EXPECT_TRUE(SetCommState(port, &settings));
        COMMTIMEOUTS copy = timeouts;
        EXPECT_TRUE(SetCommTimeouts(port, &copy));
        return port;
    }

    void Send(const std::string& text) const {
        line->Send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }

    // What the device heard, and when last.
    std::string heard;
    platform::kernel::Time heard_at{};

    const std::shared_ptr<platform::device::MemoryLine> line =
        std::make_shared<platform::device::MemoryLine>(460800,
                                                       [this](std::span<const std::uint8_t> bytes) {
                                                           heard.append(bytes.begin(), bytes.end());
                                                           heard_at = platform::kernel::Now();
                                                       });
};

// The program's record: 50 ms and 50 ms a byte for reads, 1 s and 10 ms a byte for writes.
inline constexpr COMMTIMEOUTS kProgramTimeouts{0, 50, 50, 10, 1000};

}  // namespace tests
