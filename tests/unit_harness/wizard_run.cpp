#include "tests/unit_harness/wizard_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/scenario/scenario_run.h"

namespace tests {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

unit::Scenario Read(const std::string& text) {
    std::vector<std::string> problems;
    auto scenario = unit::ReadScenario(text, "text", problems);
    if (!scenario)
        throw std::invalid_argument(problems.front());
    return *std::move(scenario);
}

}  // namespace

unit::Program TheProgram() {
    const auto run = [] {
        wchar_t command_line[] = L"";
        return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
    };
    return {run, res::ProgramResources()};
}

unit::VirtualUnit::Options OptionsFrom(const std::string& text) {
    unit::VirtualUnit::Options options;
    Read(text).settings.ApplyTo(options);
    return options;
}

WizardRun::WizardRun(const unit::VirtualUnit::Options& options)
    : log_([this](std::chrono::microseconds, const std::string& line) {
          const std::scoped_lock lock(mutex_);
          lines_.push_back(line);
      }) {
    unit_ = std::make_unique<unit::VirtualUnit>(
        options, TheProgram(), log_, [](const std::string& line) { std::cerr << line << '\n'; });
    operator_ = std::make_unique<unit::Operator>(*unit_, "");
    unit_->Start();
}

void WizardRun::Close() {
    EXPECT_TRUE(CloseAnyhow()) << "the program did not end";
    EXPECT_EQ(unit_->leftovers(), "");
    EXPECT_EQ(unit_->program().exit_code(), 0);
}

bool WizardRun::CloseAnyhow() {
    closed_ = true;
    return unit_->Close(60s);
}

void WizardRun::RunFor(std::chrono::milliseconds time) {
    const kernel::Time deadline = kernel::Now() + time;
    kernel::At(deadline, [] {});
    kernel::RunHostThread([&] { return kernel::Now() >= deadline; });
}

bool WizardRun::RunUntil(const std::function<bool()>& condition, std::chrono::seconds limit) {
    const kernel::Time deadline = kernel::Now() + limit;
    while (!condition()) {
        if (kernel::Now() >= deadline)
            return false;
        RunFor(20ms);
    }
    return true;
}

std::string WizardRun::RunScenario(const std::string& text) {
    unit::ScenarioRun run(*operator_, Read(text), {});
    run.Start();
    kernel::RunHostThread([&] { return run.finished(); });
    return run.problem();
}

bool WizardRun::Tap(const std::string& caption) {
    const auto place = operator_->FindButton(caption);
    if (place)
        TapAt(*place);
    return place.has_value();
}

void WizardRun::TapAt(POINT place) {
    operator_->Tap(place, 100ms);
    kernel::RunHostThread([this] { return !operator_->busy(); });
}

std::vector<std::string> WizardRun::lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
}

std::size_t WizardRun::line_count() const {
    const std::scoped_lock lock(mutex_);
    return lines_.size();
}

bool WizardRun::Logged(const std::string& part) const {
    return std::ranges::any_of(
        lines(), [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

}  // namespace tests
