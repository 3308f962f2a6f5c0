#include "tests/harness/wizard_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>

#include <pm.h>

#include "dvrlink/UART.h"
#include "platform/device/serial_port.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/text.h"
#include "platform/powermgr/power_notifications.h"
#include "res/program_resources.h"
#include "tests/model/link_model.h"
#include "tests/support/program_log.h"
#include "wizard/MainFrm.h"

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show);

namespace tests {

namespace kernel = platform::kernel;

constexpr std::size_t kFrameOverhead = 9;

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
    EXPECT_EQ(from_program_.size(), 0U) << "bytes after the last frame";
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

void WizardHarness::GoTo(int step) {
    if (!program_)
        Start();
    const auto tap = [this](const char* caption) {
        EXPECT_TRUE(Until([&] { return Tap(caption); }, 300s)) << "no button " << caption;
    };
    // Free running, the timer may fire after the report, or during the tap.
    const auto next = [this] {
        if (Step() == 0 && !Tap("Next"))
            Card(0);
        return Step() == 1;
    };
    const std::function<void()> flows[] = {
        [] {},
        [&] {
            tap("Power On");
            tap("OK");
            RunFor(3s);
            Card(0);
        },
        [&] { EXPECT_TRUE(Until(next, 300s)); },
        [&] { Percent(5); },
        [&] { Percent(100); },
        [&] {
            RunFor(3s);
            tap("OK");
        },
        [&] {
            tap("Next");
            RunFor(2500ms);
            Running(2);
        },
        [&] { Command(IDC_BTN_SUSPEND); },
    };
    const DWORD answer = std::exchange(platform.board.hal_result, ERROR_NOT_SUPPORTED);
    for (int at = -1; at <= step; ++at) {
        flows[at + 1]();
        EXPECT_TRUE(Until([&] { return Step() == at; }, 300s)) << "never at " << at;
        RunFor(at == 1 || at == 5 ? 2500ms : 200ms);
        // The timer has hidden the buttons; a report shows Next again.
        if (at == 0)
            Card(0);
        RunFor(50ms);
    }
    platform.board.hal_result = answer;
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

bool WizardHarness::Tap(const std::string& caption) {
    const auto text = Find(caption);
    if (!text)
        return false;
    using platform::window::Touch;
    const auto& [left, top, right, bottom] = text->box;
    for (const auto& [touch, time] : {std::pair(Touch::kDown, 20ms), {Touch::kUp, 5ms}}) {
        platform::window::TouchScreen(touch, (left + right) / 2, (top + bottom) / 2);
        RunFor(time);
    }
    return true;
}

void WizardHarness::Indicate(std::uint8_t command, const Bytes& payload) {
    line_->Send(model::Frame(0x80, command, payload));
}

void WizardHarness::Version(std::string_view text) {
    line_->Send(model::Frame(0x20, 0x802E, Bytes(text.begin(), text.end())));
}

void WizardHarness::Receive(std::span<const std::uint8_t> bytes) {
    from_program_.insert(from_program_.end(), bytes.begin(), bytes.end());
    while (from_program_.size() >= kFrameOverhead) {
        const Bytes& frame = from_program_;
        const std::size_t size = kFrameOverhead + frame[6];
        if (frame.size() < size)
            return;
        const unsigned sum = std::accumulate(frame.begin(), frame.begin() + size - 2, 0U);
        // Every frame of the program is a command with the one payload byte 0.
        EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 3), (Bytes{0xA5, 0x5A, 0x10}));
        EXPECT_EQ(Bytes(frame.begin() + 5, frame.begin() + 8), (Bytes{0, 1, 0}));
        EXPECT_EQ(frame[size - 2] * 256U + frame[size - 1], sum & 0xFFFF);
        frames.push_back(static_cast<WORD>(frame[3] << 8 | frame[4]));
        from_program_.erase(from_program_.begin(), from_program_.begin() + size);
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

int WizardHarness::Step() const {
    const CMainFrame* const frame = g_pMainFrame;
    return frame == nullptr ? kNoFrame : frame->m_nStep.load();
}

std::optional<platform::gdi::PlacedText> WizardHarness::Find(const std::string& text) const {
    const platform::gdi::Surface screen = Screen();
    const auto found =
        std::ranges::find(screen.texts(), kernel::FromUtf8(text), &platform::gdi::PlacedText::text);
    return found == screen.texts().end() ? std::nullopt : std::optional(*found);
}

std::vector<std::string> WizardHarness::TakeLog(std::string_view part) {
    std::vector<std::string> log = ProgramLog(platform.board);
    platform.board.ClearOutput();
    std::erase_if(log, [&](const std::string& line) { return line.find(part) == line.npos; });
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
