#include "tests/harness/wizard_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include <pm.h>

#include "dvrlink/UART.h"
#include "platform/device/serial_port.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
#include "res/program_resources.h"
#include "tests/support/program_log.h"
#include "wizard/MainFrm.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show);

namespace tests {

namespace kernel = platform::kernel;

WizardHarness::WizardHarness(const kernel::Options& options, Pace pace) : platform(options) {
    // A process starts with an empty parser; an earlier run in this one may have ended in a frame.
    const std::array<BYTE, 80> nothing{};
    UART_ParseData(nothing.data(), static_cast<DWORD>(nothing.size()));
    line_ = std::make_shared<unit::MemoryLine>(
        460800, [this](std::span<const std::uint8_t> bytes) { Receive(bytes); }, pace);
    auto& drivers = platform.board.drivers;
    drivers[L"COM9:"] = std::make_shared<platform::device::SerialDriver>(line_);
    drivers[L"DVR1:"] = reset;
    drivers[L"SCA0:"] = scaler;
    std::string problem;
    EXPECT_TRUE(
        platform::resource::SetModule(res::ProgramResources(), L"\\Windows\\Tolvane.exe", problem))
        << problem;
}

WizardHarness::~WizardHarness() {
    if (program_ && !Ended())
        Close();
    EXPECT_EQ(exit_code_, expected_exit_);
    EXPECT_EQ(outside_frames_, 0U) << "bytes that belong to no frame";
    EXPECT_EQ(reset->open_handles, 0);
    EXPECT_EQ(scaler->open_handles, 0);
    EXPECT_EQ(platform::gdi::DrawingObjectCount(), 0U) << "drawing objects left";
}

void WizardHarness::Start(int show) {
    // The named mutex stays open to the end of the process.
    platform.AllowHandles(1);
    const auto entry = [this, show] {
        wchar_t command_line[] = L"";
        exit_code_ = WinMain(platform::resource::ModuleInstance(), nullptr, command_line, show);
        return DWORD{0};
    };
    program_ = kernel::StartThread(entry, THREAD_PRIORITY_NORMAL, kernel::kProgramProcess);
    RunFor(20ms);
}

void WizardHarness::StartAt(int step) {
    Start();
    ASSERT_TRUE(Until([this] { return Shows("Power On"); }, 60s));
    g_pMainFrame.load()->m_nStep = step;
    Post(WM_TIMER, TIMER_REPAINT);
    RunFor(50ms);
    platform.board.ClearOutput();
}

bool WizardHarness::Until(const std::function<bool()>& condition, std::chrono::seconds limit) {
    const kernel::Time deadline = kernel::Now() + limit;
    while (!condition()) {
        if (kernel::Now() >= deadline)
            return false;
        RunFor(10ms);
    }
    return true;
}

void WizardHarness::Receive(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kFrameBytes = 10;
    outside_frames_ += bytes.size();
    for (const std::uint8_t byte : bytes) {
        const auto frame = from_program_.Add(byte);
        if (!frame)
            continue;
        // Every frame of the program is a command with the one payload byte 0.
        EXPECT_EQ(*frame, (model::Report{0x10, frame->command, {0}}));
        frames.push_back(static_cast<WORD>(frame->command));
        outside_frames_ -= kFrameBytes;
    }
}

void WizardHarness::SetAcLine(BYTE status) {
    platform.board.supply.ac_line_status = status;
    platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
    RunFor(50ms);
}

void WizardHarness::Post(UINT message, WPARAM wparam, LPARAM lparam) {
    const HWND target = FindWindowW(L"Tolvane", nullptr);
    ASSERT_NE(target, nullptr);
    PostMessageW(target, message, wparam, lparam);
}

bool WizardHarness::Ended() const {
    const kernel::KernelLock lock = kernel::LockKernel();
    return program_->ended;
}

std::optional<platform::gdi::PlacedText> WizardHarness::Find(const std::string& text) const {
    const platform::gdi::Surface screen = Screen();
    const auto found =
        std::ranges::find(screen.texts(), kernel::FromUtf8(text), &platform::gdi::PlacedText::text);
    return found == screen.texts().end() ? std::nullopt : std::optional(*found);
}

std::vector<std::string> WizardHarness::TakeLog() {
    std::vector<std::string> log = ProgramLog(platform.board);
    platform.board.ClearOutput();
    return log;
}

void WizardHarness::WaitForEnd() {
    EXPECT_TRUE(Until([this] { return Ended(); }, 60s)) << "the program did not end";
}

void WizardHarness::ExpectExit(int code) {
    expected_exit_ = code;
    platform.AllowHandles(0);
    WaitForEnd();
}

}  // namespace tests
