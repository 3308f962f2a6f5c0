#include "app/RunMainFrame.h"

#include "wizard/MainFrm.h"

namespace {

// The platform chooses the window's place. Where that is not the whole screen, put it there.
void CoverScreen(HWND hWnd) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    const RECT screen{0, 0, kScreenWidth, kScreenHeight};
    if (!EqualRect(&place, &screen))
        SetWindowPos(hWnd, nullptr, 0, 0, kScreenWidth, kScreenHeight,
                     SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace

int RunMainFrame(LPWSTR /*lpstrCmdLine*/, int nCmdShow) {
    CMessageLoop loop;
    _Module.AddMessageLoop(&loop);
    CMainFrame frame;
    g_pMainFrame = &frame;

    int result = 0;
    if (frame.CreateEx() != nullptr) {
        CoverScreen(frame.m_hWnd);
        ShowWindow(frame.m_hWnd, nCmdShow);
        result = loop.Run();
        // A WM_QUIT from elsewhere leaves the window and its threads behind.
        if (frame.m_hWnd != nullptr)
            DestroyWindow(frame.m_hWnd);
    }
    g_pMainFrame = nullptr;
    _Module.RemoveMessageLoop();
    return result;
}
