#include "tests/rig/wizard_run.h"

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

namespace {

int RunProgram() {
    wchar_t command_line[] = L"";
    return WinMain(platform::resource::ModuleInstance(), nullptr, command_line, SW_SHOWNORMAL);
}

}  // namespace

WizardRun::WizardRun(const unit::VirtualUnit::Options& options)
    : log_([this](std::chrono::microseconds, const std::string& line) {
          const std::scoped_lock lock(mutex_);
          lines_.push_back(line);
      }) {
    unit_ = std::make_unique<unit::VirtualUnit>(
        options, unit::Program{RunProgram, res::ProgramResources()}, log_,
        [](const std::string& line) { std::cerr << line << '\n'; });
    unit_->Start();
}

WizardRun::~WizardRun() {
    if (!closed_)
        Close();
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

bool WizardRun::WaitForText(const std::wstring& text, std::chrono::seconds limit) {
    return RunUntil([&] { return screen().Shows(text); }, limit);
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

void WizardRun::GoToCheckCard() {
    // Ample: a fast unit under a sanitizer has little of the host's time in one of its seconds.
    ASSERT_TRUE(WaitForText(L"Power On", 60s));
    ASSERT_TRUE(Tap(L"Power On"));
    ASSERT_TRUE(WaitForText(L"OK", 20s));
    ASSERT_TRUE(Tap(L"OK"));
    ASSERT_TRUE(WaitForText(L" Nextボタンは表示されません。", 30s));
    ASSERT_TRUE(WaitForText(L"Next", 5s));
    RunFor(3s);
}

void WizardRun::GoToInsertCard() {
    GoToCheckCard();
    ASSERT_TRUE(Tap(L"Next"));
    ASSERT_TRUE(WaitForText(L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", 5s));
    RunFor(4s);
}

void WizardRun::GoToUpdating() {
    GoToInsertCard();
    InsertImage();
    ASSERT_TRUE(WaitForText(L"Update", 5s));
    ASSERT_TRUE(Tap(L"Update"));
    // Any percent: a fast unit may go on before the screen is read.
    ASSERT_TRUE(
        RunUntil([this] { return !screen().TextStartingWith(L"Update Percent : ").empty(); }, 15s));
}

void WizardRun::GoToRemoveCard() {
    GoToUpdating();
    ASSERT_TRUE(WaitForText(L"OK", 60s));
    ASSERT_TRUE(Tap(L"OK"));
    ASSERT_TRUE(WaitForText(L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 3s));
}

std::vector<std::string> WizardRun::lines() const {
    const std::scoped_lock lock(mutex_);
    return lines_;
}

bool WizardRun::Logged(const std::string& part) const {
    return std::ranges::any_of(
        lines(), [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

std::string WizardRun::output() const {
    std::string all;
    for (const std::string& line : lines())
        all += line + '\n';
    return all;
}

}  // namespace tests
