#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "dvrlink/UART.h"
#include "platform/device/memory_line.h"
#include "platform/device/serial_port.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/platform_fixture.h"

namespace tests {

using Bytes = std::vector<std::uint8_t>;

// A platform with a DVR's end of "COM9:".
class LinkFixture {
  public:
    explicit LinkFixture(const platform::kernel::Options& options = {}) : platform(options) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
        // The parser is the program's and remembers the part of a frame that an earlier test left.
        const Bytes more_than_a_frame(80, 0x00);
        UART_ParseData(more_than_a_frame.data(), static_cast<DWORD>(more_than_a_frame.size()));
    }

    // The DVR sends, at a time of the unit's clock.
    void DvrSends(platform::kernel::Time when, Bytes bytes) {
        platform::kernel::At(when, [this, bytes = std::move(bytes)] { line->Send(bytes); });
    }

    Platform platform;
    Bytes received_by_dvr;
    std::shared_ptr<platform::device::MemoryLine> line =
        std::make_shared<platform::device::MemoryLine>(
            460800, [this](std::span<const std::uint8_t> bytes) {
                received_by_dvr.insert(received_by_dvr.end(), bytes.begin(), bytes.end());
            });
};

// A frame as the DVR sends it. The sum is formed here byte by byte.
inline Bytes DvrFrameBytes(std::uint8_t type, std::uint16_t command, const Bytes& payload) {
    Bytes frame = {0xA5,
                   0x5A,
                   type,
                   static_cast<std::uint8_t>(command >> 8),
                   static_cast<std::uint8_t>(command & 0xFF),
                   static_cast<std::uint8_t>(payload.size() >> 8),
                   static_cast<std::uint8_t>(payload.size() & 0xFF)};
    frame.insert(frame.end(), payload.begin(), payload.end());
    unsigned sum = 0;
    for (const std::uint8_t byte : frame)
        sum += byte;
    frame.push_back(static_cast<std::uint8_t>((sum >> 8) & 0xFF));
    frame.push_back(static_cast<std::uint8_t>(sum & 0xFF));
    return frame;
}

}  // namespace tests
