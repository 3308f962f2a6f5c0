#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "dvrlink/Handlers.h"
#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"
#include "platform/device/serial_port.h"
#include "platform/kernel/scheduler.h"
#include "tests/support/program_log.h"
#include "unit/line/memory_line.h"

namespace tests {

using namespace std::chrono_literals;
namespace kernel = platform::kernel;

using Bytes = std::vector<std::uint8_t>;

// The bytes of pairs of hexadecimal digits; spaces are ignored.
inline Bytes Hex(std::string digits) {
    std::erase(digits, ' ');
    Bytes bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(at, 2), nullptr, 16)));
    return bytes;
}

// A platform whose "COM9:" is a simulated line with the test at its other end.
struct LinkFixture {
    explicit LinkFixture(const kernel::Options& options = {}) : platform(options) {
        platform.board.drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line);
        // The parser may still hold the part of a frame from an earlier test.
        Parse(Bytes(80));
    }

    // Runs the body with the link's locks, and lets the line carry what it sent.
    template <typename Body>
    void Run(Body body) {
        platform.Run([&] {
            ASSERT_TRUE(Memory_Init());
            body();
            Sleep(100);
            COM_DeInit();
            Memory_DeInit();
        });
    }

    static void Parse(const Bytes& bytes) {
        UART_ParseData(bytes.data(), static_cast<DWORD>(bytes.size()));
    }

    // The log lines since the last call, joined by line feeds.
    std::string TakeLog() {
        std::string joined;
        for (const std::string& logged : ProgramLog(platform.board))
            joined += (joined.empty() ? "" : "\n") + logged;
        platform.board.ClearOutput();
        return joined;
    }

    std::ptrdiff_t Count(const std::string& logged) const {
        return std::ranges::count(ProgramLog(platform.board), logged);
    }

    Platform platform;
    Bytes received_by_dvr;
    std::shared_ptr<unit::MemoryLine> line =
        std::make_shared<unit::MemoryLine>(460800, [this](std::span<const std::uint8_t> bytes) {
            received_by_dvr.insert(received_by_dvr.end(), bytes.begin(), bytes.end());
        });
};

// An indication with a plain handler, and its log line.
inline const std::string kVolume = "A55A 80 0019 0001 07 01A0";
inline const std::string kVolumeLine = "\tPlay_Volume_IND, (0x0019)";

}  // namespace tests
