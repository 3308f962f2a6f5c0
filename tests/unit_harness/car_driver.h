#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/unit_harness/wizard_run.h"

namespace tests {

// The driver of the car: does what the screen asks for, in any state of the wizard. Knows only what
// the screen shows and what he did with the card. Host thread.
class CarDriver {
  public:
    // How a drive ended, and what the screen shows then.
    enum class End {
        kSuccess,    // the update has ended
        kFailure,    // the update has failed
        kError,      // no card was reported
        kStandstill  // nothing to do and nothing new for kPatience
    };

    // Longer than the program is ever busy and than the DVR takes to show something.
    static constexpr std::chrono::seconds kPatience{16};

    explicit CarDriver(WizardRun& run) : run_(run) {}

    // The first card that he inserts holds no image.
    void ForgetImageOnce() { forget_image_ = true; }
    // Looks at the screen and does at most one thing each time, until the drive has ended. Empty
    // when it has not: the program has ended, `limit` has passed, or `stop` holds.
    std::optional<End> Drive(
        std::chrono::seconds limit, const std::function<bool()>& stop = [] { return false; });
    // Called after each look at the screen.
    void OnLook(std::function<void()> looked) { looked_ = std::move(looked); }
    // Removes the card, and switches external power off and on while the DVR is reset.
    void CyclePower();

  private:
    using Time = std::chrono::microseconds;

    void Look();
    void Act();
    bool Tap(const char* caption);
    void MoveCard(const char* command);
    // How long the text has been on the screen; empty when it is not there.
    std::optional<Time> ShownFor(const std::wstring& text);
    std::optional<End> FindEnd();

    WizardRun& run_;
    std::function<void()> looked_ = [] {};
    bool forget_image_ = false;
    bool blank_is_in_ = false;
    bool tried_places_ = false;
    Time card_moved_{};
    Time tapped_{};
    Time news_{};                      // the last time that something was new or done
    std::vector<std::wstring> texts_;  // on the screen, at the last look
    Time texts_since_{};
    std::uint64_t seen_version_ = 0;
};

const char* NameOf(CarDriver::End end);

}  // namespace tests
