#include "unit/board/program_host.h"

#include <windows.h>

#include "platform/kernel/kernel.h"
#include "platform/window/screen.h"

namespace unit {
namespace {

// The program's window class and mutex, as its string resource 128 names them.
constexpr wchar_t kName[] = L"Tolvane";

}  // namespace

void ProgramHost::Start(Entry entry) {
    ended_ = false;
    const auto run = [this, entry = std::move(entry)] {
        exit_code_ = entry();
        ended_ = true;
        return static_cast<DWORD>(exit_code_);
    };
    thread_ = platform::kernel::StartThread(run, THREAD_PRIORITY_NORMAL,
                                            platform::kernel::kProgramProcess);
}

void ProgramHost::CloseWindow() {
    const auto window = platform::window::FindOwnWindow(kName, std::nullopt);
    if (window != 0)
        PostMessageW(reinterpret_cast<HWND>(window), WM_CLOSE, 0, 0);
}

bool ProgramHost::HasWindow() {
    return platform::window::FindOwnWindow(kName, std::nullopt) != 0;
}

bool ProgramHost::Starts(std::wstring_view name) const {
    return name == kName && !ended_ && !HasWindow();
}

std::size_t ProgramHost::HandlesKept() {
    return platform::kernel::FindNamedKind(kName) == platform::NamedKind::kMutex ? 1 : 0;
}

}  // namespace unit
