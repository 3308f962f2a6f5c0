#include <windows.h>

#include <atlapp.h>
#include <atlbase.h>
#include <commctrl.h>
#include <objbase.h>

#include <iterator>
#include <memory>
#include <new>

#include "dvrlink/UART.h"
#include "res/resource.h"
#include "wizard/MainFrm.h"

CAppModule _Module;

namespace {

constexpr int kAttempts = 25;
constexpr DWORD kAttemptInterval = 100;

// The name of the mutex, of the window class, and of the running copy's window.
wchar_t g_szClassName[260] = {};

// The lowest bit asks to bring the windows that the window owns forward too.
bool BringToFront(HWND hWnd) {
    return SetForegroundWindow(reinterpret_cast<HWND>(reinterpret_cast<ULONG_PTR>(hWnd) | 1)) !=
           FALSE;
}

// Names the main window's class after string 128 and makes sure that one copy of the program runs.
//
// S_OK: this copy runs, and keeps its named mutex to the end of the process.
// S_FALSE: another copy runs and has been brought to the front; this one must end.
// E_FAIL: string 128 is missing or the mutex cannot be created.
// E_INVALIDARG: the mutex's name belongs to an object of another kind.
HRESULT CheckSingleInstance(HINSTANCE hInstance) {
    g_szClassName[0] = L'\0';
    LoadStringW(hInstance, IDR_MAINFRAME, g_szClassName,
                static_cast<int>(std::size(g_szClassName)));
    CMainFrame::GetWndClassInfo().m_wc.lpszClassName = g_szClassName;
    if (g_szClassName[0] == L'\0')
        return E_FAIL;

    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, g_szClassName);
        const DWORD error = GetLastError();
        if (mutex == nullptr)
            return error == ERROR_INVALID_HANDLE ? E_INVALIDARG : E_FAIL;
        if (error != ERROR_ALREADY_EXISTS)
            return S_OK;
        CloseHandle(mutex);

        const HWND running = FindWindowW(g_szClassName, nullptr);
        if (running == nullptr)
            Sleep(kAttemptInterval);
        else if (BringToFront(running))
            return S_FALSE;
    }
    return S_OK;
}

// The platform chooses the window's place; the window must cover the whole screen.
void CoverScreen(HWND hWnd) {
    RECT place{};
    GetWindowRect(hWnd, &place);
    const RECT screen{0, 0, kScreenWidth, kScreenHeight};
    if (!EqualRect(&place, &screen))
        SetWindowPos(hWnd, nullptr, 0, 0, kScreenWidth, kScreenHeight,
                     SWP_NOZORDER | SWP_NOACTIVATE);
}

// Creates and shows the main window and runs the thread's message loop until the window has ended
// it. Returns the loop's result, 0 when the window could not be created.
int RunMainFrame(LPWSTR /*lpstrCmdLine*/, int nCmdShow) {
    CMessageLoop loop;
    std::unique_ptr<CMainFrame> frame(new (std::nothrow) CMainFrame);
    if (frame == nullptr)
        return 0;
    _Module.AddMessageLoop(&loop);
    g_pMainFrame = frame.get();

    int result = 0;
    if (frame->CreateEx() != nullptr) {
        CoverScreen(frame->m_hWnd);
        ShowWindow(frame->m_hWnd, nCmdShow);
        result = loop.Run();
        // A WM_QUIT from elsewhere leaves the window and its threads.
        if (frame->m_hWnd != nullptr)
            DestroyWindow(frame->m_hWnd);
    }
    g_pMainFrame = nullptr;
    // A receive thread that did not end may still run a method of the frame.
    if (UART_HasThread()) {
        [[maybe_unused]] const CMainFrame* const left = frame.release();
    }
    _Module.RemoveMessageLoop();
    return result;
}

}  // namespace

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE /*hPrevInstance*/, LPWSTR lpstrCmdLine,
                   int nCmdShow) {
    const HRESULT single = CheckSingleInstance(hInstance);
    if (FAILED(single) || single == S_FALSE)
        return single;

    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_DATE_CLASSES};
    InitCommonControlsEx(&controls);
    _Module.Init(hInstance);

    const int result = RunMainFrame(lpstrCmdLine, nCmdShow);

    _Module.Term();
    CoUninitialize();
    return result;
}
