#include "unit/board/task_bar.h"

#include <windows.h>

#include "platform/kernel/thread.h"
#include "platform/window/screen.h"

namespace unit {
namespace {

constexpr wchar_t kClassName[] = L"HHTaskBar";
constexpr platform::kernel::ProcessId kProcess = 0x00600002;
constexpr int kHeight = 8;
constexpr COLORREF kFace = RGB(48, 52, 58);

void Paint(HWND window) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    const HBRUSH brush = CreateSolidBrush(kFace);
    RECT area;
    GetClientRect(window, &area);
    FillRect(dc, &area, brush);
    DeleteObject(brush);
    EndPaint(window, &paint);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_PAINT:
            Paint(window);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(window, message, wparam, lparam);
    }
}

DWORD Run() {
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = Procedure;
    window_class.lpszClassName = kClassName;
    RegisterClassW(&window_class);
    CreateWindowExW(WS_EX_TOPMOST, kClassName, L"", WS_POPUP | WS_VISIBLE, 0,
                    platform::window::kScreenHeight - kHeight, platform::window::kScreenWidth,
                    kHeight, nullptr, nullptr, nullptr, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    return 0;
}

}  // namespace

void StartTaskBar() {
    platform::kernel::StartThread(Run, THREAD_PRIORITY_NORMAL, kProcess);
}

void CloseTaskBar() {
    if (const HWND window = FindWindowW(kClassName, nullptr))
        PostMessageW(window, WM_CLOSE, 0, 0);
}

}  // namespace unit
