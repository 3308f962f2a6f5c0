#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dvrsim/card_folders.h"
#include "tests/unit_harness/wizard_run.h"

namespace tests {

// The driver of the car: does what the screen asks for, whatever came before. Knows nothing but
// what can be seen there and what was done with the card. Hardware's thread.
class CarDriver {
  public:
    // Where a drive has come to, and what the screen shows there.
    enum class End {
        kSuccess,    // the update has ended
        kFailure,    // the update has failed
        kError,      // no card was reported
        kStandstill  // nothing to do, and nothing new to see for kPatience
    };

    // Longer than the program is ever busy; also the longest that the DVR takes to show something.
    static constexpr std::chrono::seconds kPatience{16};

    explicit CarDriver(WizardRun& run) : run_(run) {}

    // The first card that goes in holds no image.
    void ForgetImageOnce() { forget_image_ = true; }

    // Looks at the screen, does at most one thing, and lets some time pass.
    void Look();
    // Looks until the drive has come to an end. Nothing when it has not: the program has ended,
    // `limit` has passed, or `stop` holds.
    std::optional<End> Drive(
        std::chrono::seconds limit, const std::function<bool()>& stop = [] { return false; });
    // Called at the end of each look.
    void OnLook(std::function<void()> looked) { looked_ = std::move(looked); }

    // Takes the card out and, with a DVR that is reset, external power away and back.
    void CyclePower();

  private:
    void Act();
    bool CardIn();
    void MoveCard(bool in);
    // How long the text has stood on the screen without a break; nothing when it does not.
    std::optional<std::chrono::microseconds> Stands(const std::wstring& text);
    std::optional<End> Arrived();

    WizardRun& run_;
    std::function<void()> looked_ = [] {};
    dvrsim::TemporaryCard image_;
    dvrsim::TemporaryCard blank_{std::nullopt};
    bool forget_image_ = false;
    bool blank_is_in_ = false;
    bool groped_ = false;
    std::chrono::microseconds card_moved_{};
    std::chrono::microseconds tapped_{};
    std::chrono::microseconds news_{};  // the last time that something was new or done
    std::vector<std::wstring> texts_;   // on the screen, at the last look
    std::chrono::microseconds texts_since_{};
    std::uint64_t seen_version_ = 0;
};

const char* NameOf(CarDriver::End end);

}  // namespace tests
