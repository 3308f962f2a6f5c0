#include "unit/board/program_host.h"

#include <windows.h>

#include "platform/kernel/kernel.h"

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
    if (const HWND window = FindWindowW(kName, nullptr))
        PostMessageW(window, WM_CLOSE, 0, 0);
}

std::size_t ProgramHost::HandlesKept() {
    return platform::kernel::FindNamedKind(kName) == platform::NamedKind::kMutex ? 1 : 0;
}

}  // namespace unit
