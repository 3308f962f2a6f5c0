#include "unit/board/task_bar.h"

#include <windows.h>

#include <array>
#include <string>

#include "platform/kernel/clock.h"
#include "platform/kernel/thread.h"
#include "platform/window/screen.h"
#include "unit/picture/calendar.h"

namespace unit {
namespace {

constexpr wchar_t kClassName[] = L"HHTaskBar";
constexpr platform::kernel::ProcessId kProcess = 0x00600002;
constexpr int kHeight = 8;
constexpr COLORREF kEdge = RGB(84, 90, 100);
constexpr COLORREF kFace = RGB(48, 52, 58);
constexpr COLORREF kStart = RGB(70, 140, 200);
constexpr COLORREF kDigits = RGB(220, 224, 230);
constexpr int kStartWidth = 18;
// The clock's distance from the right edge.
constexpr int kClockFromRight = 24;

constexpr UINT_PTR kMinuteTimer = 1;

// Figures of 3 by 5 pixels, because no font is small enough: three bits a row, the left one
// highest. The colon follows the nine.
constexpr std::array<std::array<unsigned, 5>, 11> kFigures = {{{7, 5, 5, 5, 7},
                                                               {2, 6, 2, 2, 7},
                                                               {7, 1, 7, 4, 7},
                                                               {7, 1, 7, 1, 7},
                                                               {5, 5, 7, 1, 1},
                                                               {7, 4, 7, 1, 7},
                                                               {7, 4, 7, 5, 7},
                                                               {7, 1, 1, 2, 2},
                                                               {7, 5, 7, 5, 7},
                                                               {7, 5, 7, 1, 7},
                                                               {0, 2, 0, 2, 0}}};
constexpr int kFigureWidth = 4;

void Fill(HDC dc, const RECT& area, COLORREF color) {
    const HBRUSH brush = CreateSolidBrush(color);
    FillRect(dc, &area, brush);
    DeleteObject(brush);
}

void DrawFigure(HDC dc, int left, int top, char figure, HBRUSH brush) {
    const std::size_t index = figure == ':' ? 10 : static_cast<std::size_t>(figure - '0');
    for (int row = 0; row < 5; ++row)
        for (int column = 0; column < 3; ++column) {
            if ((kFigures[index][static_cast<std::size_t>(row)] & (4U >> column)) == 0)
                continue;
            const RECT pixel{left + column, top + row, left + column + 1, top + row + 1};
            FillRect(dc, &pixel, brush);
        }
}

void DrawClock(HDC dc, int left, int top) {
    const HBRUSH brush = CreateSolidBrush(kDigits);
    const std::string time = CarTime(platform::kernel::Now()).substr(0, 5);
    for (const char figure : time) {
        DrawFigure(dc, left, top, figure, brush);
        left += kFigureWidth;
    }
    DeleteObject(brush);
}

void Paint(HWND window) {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    RECT area;
    GetClientRect(window, &area);
    Fill(dc, area, kFace);
    Fill(dc, {0, 0, area.right, 1}, kEdge);
    Fill(dc, {0, 1, kStartWidth, area.bottom}, kStart);
    DrawClock(dc, area.right - kClockFromRight, 2);
    EndPaint(window, &paint);
}

// Repaints at the clock's next full minute.
void AwaitNextMinute(HWND window) {
    using namespace std::chrono;
    const auto since_minute = duration_cast<milliseconds>(platform::kernel::Now()) % 1min;
    SetTimer(window, kMinuteTimer, static_cast<UINT>((1min - since_minute).count()) + 1, nullptr);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    switch (message) {
        case WM_CREATE:
            AwaitNextMinute(window);
            return 0;
        case WM_TIMER:
            AwaitNextMinute(window);
            InvalidateRect(window, nullptr, FALSE);
            return 0;
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
