#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace dvrsim {

// A random delay between two limits, both included.
struct DelayRange {
    std::chrono::microseconds least;
    std::chrono::microseconds most;
};

constexpr DelayRange Milliseconds(int least, int most) {
    return {std::chrono::milliseconds(least), std::chrono::milliseconds(most)};
}

// Each delay of the boot starts at the event before it, so the order is fixed. The unit sleeps 2 s
// after a reset and hides its buttons 0.1 s later. The DVR must report the card and the normal
// state after that, and the first percent of an update before 4 s. The comments give the time since
// the reset.
struct Timings {
    DelayRange cpu_up = Milliseconds(1700, 1900);      // reset to INITIALIZING: 1.7 ... 1.9 s
    DelayRange card_look = Milliseconds(800, 900);     // to the search for an image: 2.5 ... 2.8 s
    DelayRange card_ready = Milliseconds(150, 200);    // to the card's report: 2.65 ... 3.0 s
    DelayRange init_ok = Milliseconds(60, 120);        // to INIT_OK: 2.71 ... 3.12 s
    DelayRange normal = Milliseconds(450, 550);        // to NORMAL: 3.16 ... 3.67 s
    DelayRange first_percent = Milliseconds(50, 150);  // image found to 1 %: 2.55 ... 2.95 s
    DelayRange update = Milliseconds(28000, 32000);    // 1 % to about 100 %
    DelayRange latency = Milliseconds(4, 12);          // a request to its acknowledgement
    DelayRange card_settle = Milliseconds(250, 400);   // a card change to its report
    DelayRange record_tick = Milliseconds(980, 1020);  // between two recording reports
    DelayRange reboot_report = Milliseconds(20, 60);   // acknowledged reboot to REBOOTTING
    DelayRange reboot = Milliseconds(200, 400);        // REBOOTTING to the reset
};

// After `from`, the percent continues at `to`. Happens once in each update.
struct PercentJump {
    std::uint8_t from = 0;
    std::uint8_t to = 0;

    bool operator==(const PercentJump&) const = default;
};

// The faults of a DVR. A percent is 0 to 100; 0 is the time before the first report. An update that
// is past the percent already fails at its next report.
struct Faults {
    bool silent = false;          // sends nothing, but works otherwise
    bool silent_card = false;     // neither indicates its card nor acknowledges queries for it
    bool silent_version = false;  // does not acknowledge queries for its version
    unsigned slow_factor = 1;  // multiplies the delays of boot, acknowledgements and card changes

    unsigned indication_copies = 1;  // how often it sends each indication
    // Repeats the report of its card at this interval.
    std::optional<std::chrono::microseconds> card_report_interval{};

    // Replaces the firmware version in acknowledgements; 0 to 64 bytes of any value.
    std::optional<std::string> reported_version{};
    // Replaces the image's version in the percent reports; 0 to 63 bytes.
    std::optional<std::string> reported_image_version{};

    // Updates hang after this percent, and continue when this is cleared.
    std::optional<std::uint8_t> stop_at_percent{};
    // Updates repeat this percent for ever.
    std::optional<std::uint8_t> stuck_at_percent{};
    // Updates fail after this percent. At 100 the DVR has reported success, but installed nothing.
    std::optional<std::uint8_t> fail_at_percent{};
    // Updates end in a reboot after this percent.
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
