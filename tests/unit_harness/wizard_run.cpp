#include "tests/unit_harness/wizard_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <mutex>

#include "platform/kernel/scheduler.h"
#include "platform/resource/module.h"
#include "res/program_resources.h"

namespace tests {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

unit::Program TheProgram() {
    const auto run = [] {
        wchar_t command_line[] = L"";
        return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
    };
    return {run, res::ProgramResources()};
}

WizardRun::WizardRun(const unit::VirtualUnit::Options& options)
    : log_([this](std::chrono::microseconds, const std::string& line) {
          const std::scoped_lock lock(mutex_);
          lines_.push_back(line);
      }) {
    unit_ = std::make_unique<unit::VirtualUnit>(
        options, TheProgram(), log_, [](const std::string& line) { std::cerr << line << '\n'; });
    unit_->Start();
}

void WizardRun::Close() {
    closed_ = true;
    EXPECT_TRUE(unit_->Close(60s)) << "the program did not end";
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
    kernel::RunHardware([&] { return kernel::Now() >= deadline; });
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

bool WizardRun::Tap(const std::wstring& caption) {
    const auto place = screen().PlaceOf(caption);
    if (place)
        TapAt(place->x, place->y);
    return place.has_value();
}

void WizardRun::TapAt(int x, int y) {
    unit_->Touch(platform::window::Touch::kDown, x, y);
    RunFor(100ms);
    unit_->Touch(platform::window::Touch::kUp, x, y);
    RunFor(1ms);
}

std::vector<std::string> WizardRun::lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
}

bool WizardRun::Logged(const std::string& part) const {
    return std::ranges::any_of(
        lines(), [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

}  // namespace tests
