#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace dvrsim {

// A delay that varies, both ends included.
struct DelayRange {
    std::chrono::microseconds least;
    std::chrono::microseconds most;
};

constexpr DelayRange Milliseconds(int least, int most) {
    return {std::chrono::milliseconds(least), std::chrono::milliseconds(most)};
}

// Each delay of the boot runs from the event before it, so the order always holds. The unit sleeps
// 2 s after a reset and hides its buttons 0.1 s later; the card and the normal state must be
// reported after that, and an update's first percent before 4 s.
struct Timings {
    DelayRange cpu_up = Milliseconds(1700, 1900);      // reset to INITIALIZING: 1.7 ... 1.9 s
    DelayRange card_look = Milliseconds(800, 900);     // to the search for an image: 2.5 ... 2.8 s
    DelayRange card_ready = Milliseconds(150, 200);    // to the card's report: 2.65 ... 3.0 s
    DelayRange init_ok = Milliseconds(60, 120);        // to INIT_OK: 2.71 ... 3.12 s
    DelayRange normal = Milliseconds(450, 550);        // to NORMAL: 3.16 ... 3.67 s
    DelayRange first_percent = Milliseconds(50, 150);  // image found to 1 %: 2.55 ... 2.95 s
    DelayRange update = Milliseconds(28000, 32000);    // 1 % to about 100 %
    DelayRange latency = Milliseconds(4, 12);          // a request received to its answer
    DelayRange card_settle = Milliseconds(250, 400);   // a card moved to its report
    DelayRange record_tick = Milliseconds(980, 1020);  // between two recording reports
    DelayRange reboot_report = Milliseconds(20, 60);   // reboot acknowledged to REBOOTTING
    DelayRange reboot = Milliseconds(200, 400);        // REBOOTTING to the reset
};

// An update whose percent, once `from` was reported, goes on from `to`. Once an update.
struct PercentJump {
    std::uint8_t from = 0;
    std::uint8_t to = 0;

    bool operator==(const PercentJump&) const = default;
};

// What is wrong with this DVR. A percent at which something happens is 0 to 100, 0 standing for the
// moment before the first report; an update that is past it already meets it with its next report.
struct Faults {
    bool silent = false;          // never sends a byte, otherwise works
    bool silent_card = false;     // neither reports its card nor answers for it
    bool silent_version = false;  // does not answer for its firmware version
    unsigned slow_factor = 1;     // boots, answers and notices its card so many times slower

    unsigned indication_copies = 1;  // sends every indication so often
    // From the boot on reports its card again and again, changed or not.
    std::optional<std::chrono::microseconds> card_report_interval{};

    // The answer for the firmware version, 0 to 64 bytes of any kind, whatever runs.
    std::optional<std::string> reported_version{};
    // The image's version in the percent reports, 0 to 63 bytes, whatever is on the card.
    std::optional<std::string> reported_image_version{};

    // Every update hangs after this percent.
    std::optional<std::uint8_t> stop_at_percent{};
    // Every update reports this percent for ever.
    std::optional<std::uint8_t> stuck_at_percent{};
    // Every update is given up after this percent; at 100 the DVR only believes it was a success.
    std::optional<std::uint8_t> fail_at_percent{};
    // Every update ends in a reboot after this percent.
    std::optional<std::uint8_t> reboot_at_percent{};
    std::optional<PercentJump> jump_back{};

    bool operator==(const Faults&) const = default;
};

struct Options {
    std::uint32_t seed = 1;
    std::string firmware_version = "14.06.12.V1.00.05";
    Timings timings{};
    Faults faults{};
};

}  // namespace dvrsim
