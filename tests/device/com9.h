#pragma once

#include <memory>
#include <span>

#include "platform/device/memory_line.h"
#include "platform/device/serial_port.h"
#include "tests/support/platform_test.h"

namespace tests {

// The program's record: 50 ms and 50 ms a byte for reads, 1 s and 10 ms a byte for writes.
inline constexpr COMMTIMEOUTS kProgramTimeouts{0, 50, 50, 10, 1000};

// Opens "COM9:" with the program's settings, 460800 baud, 8N1, and these time-outs.
inline HANDLE OpenCom9(COMMTIMEOUTS timeouts = kProgramTimeouts) {
    const HANDLE port =
        CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    DCB settings{};
    settings.DCBlength = sizeof settings;
    EXPECT_TRUE(GetCommState(port, &settings));
    settings.BaudRate = 460800;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    EXPECT_TRUE(SetCommState(port, &settings));
    EXPECT_TRUE(SetCommTimeouts(port, &timeouts));
    return port;
}

// How many bytes went out.
inline DWORD Write(HANDLE port, const std::string& text) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(port, text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    return written;
}

inline std::string Read(HANDLE port, DWORD most) {
    std::string text(most, '?');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(port, text.data(), most, &read, nullptr));
    EXPECT_EQ(text.find_first_not_of('?', read), std::string::npos) << "written beyond its end";
    return text.substr(0, read);
}

// "COM9:" with a device of 460800 baud, 8N1 at the other end of its wires.
struct MemoryPort {
    explicit MemoryPort(Platform& platform) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
    }

    void SendAfter(kernel::Duration time, std::size_t bytes) const {
        kernel::After(time, [this, bytes] { line->Send(std::vector<std::uint8_t>(bytes, 'x')); });
    }

    std::string heard;
    const std::shared_ptr<platform::device::MemoryLine> line =
        std::make_shared<platform::device::MemoryLine>(460800,
                                                       [this](std::span<const std::uint8_t> bytes) {
                                                           heard.append(bytes.begin(), bytes.end());
                                                       });
};

}  // namespace tests
