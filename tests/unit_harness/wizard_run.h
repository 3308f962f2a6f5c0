#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "unit/board/debug_log.h"
#include "unit/board/virtual_unit.h"
#include "unit/picture/screen_reader.h"

namespace tests {

unit::Program TheProgram();

// The whole program on the whole unit with the simulated DVR, in simulated time unless told
// otherwise. Ends the program in order and expects that nothing is left.
class WizardRun {
  public:
    explicit WizardRun(const unit::VirtualUnit::Options& options = {});
    ~WizardRun() {
        if (!closed_)
            Close();
    }
    WizardRun(const WizardRun&) = delete;
    WizardRun& operator=(const WizardRun&) = delete;

    unit::VirtualUnit& unit() { return *unit_; }
    unit::ScreenReader screen() { return unit::ScreenReader(unit_->Screen()); }

    void RunFor(std::chrono::milliseconds time);
    // Runs until it holds, looking every 20 ms of unit time; false when it did not come in time.
    bool RunUntil(const std::function<bool()>& condition, std::chrono::seconds limit);
    bool WaitForText(const std::wstring& text, std::chrono::seconds limit) {
        return RunUntil([&] { return screen().Shows(text); }, limit);
    }

    // Presses the button with that caption for 100 ms; false when it is not on the screen.
    bool Tap(const std::wstring& caption);
    void TapAt(int x, int y);

    // Closes the window and waits for the end; the destructor does it otherwise. What was left
    // open is a failure.
    void Close();

    // The same without a look at what was left or returned; false when it did not end.
    bool CloseAnyhow();

    // The debug output so far, a line an entry.
    std::vector<std::string> lines() const;
    bool Logged(const std::string& part) const;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    unit::DebugLog log_;
    std::unique_ptr<unit::VirtualUnit> unit_;
    bool closed_ = false;
};

}  // namespace tests
