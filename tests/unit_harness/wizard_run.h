#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "unit/board/debug_log.h"
#include "unit/board/virtual_unit.h"
#include "unit/commands/operator.h"
#include "unit/picture/screen_reader.h"

namespace tests {

unit::Program TheProgram();

// The whole program on the whole unit with the simulated DVR, in simulated time by default. The
// destructor closes the program and expects that nothing is left. Host thread.
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
    unit::Operator& unit_operator() { return *operator_; }
    unit::ScreenReader screen() { return unit::ScreenReader(unit_->Screen()); }

    void RunFor(std::chrono::milliseconds time);
    // Runs until the condition holds, checked every 20 ms of unit time; false after the limit.
    bool RunUntil(const std::function<bool()>& condition, std::chrono::seconds limit);
    // Executes the commands of that scenario text, but not its settings, until they end. Returns
    // what was wrong; empty when it passed.
    std::string RunScenario(const std::string& text);
    // Taps the button with that caption; false when it is not on the screen.
    bool Tap(const std::string& caption);
    void TapAt(POINT place);

    // Closes the program; expects that it ends, returns 0 and leaves nothing open.
    void Close();
    // Closes the program and expects nothing; false when it did not end.
    bool CloseAnyhow();

    // The debug output so far, a line an entry.
    std::vector<std::string> lines() const;
    std::size_t line_count() const;
    bool Logged(const std::string& part) const;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    unit::DebugLog log_;
    std::unique_ptr<unit::VirtualUnit> unit_;
    std::unique_ptr<unit::Operator> operator_;
    bool closed_ = false;
};

// The settings of that scenario text on top of the defaults.
unit::VirtualUnit::Options OptionsFrom(const std::string& text);

}  // namespace tests
