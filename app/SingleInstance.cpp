#include "app/SingleInstance.h"

#include <iterator>

#include "res/resource.h"
#include "wizard/MainFrm.h"

namespace {

constexpr int kAttempts = 25;
constexpr DWORD kAttemptInterval = 100;

// The mutex, the window class and the running copy's window all have this name.
wchar_t g_szClassName[260] = {};

// Brings the window forward together with the windows that it owns, as the lowest bit asks.
bool BringToFront(HWND hWnd) {
    return SetForegroundWindow(reinterpret_cast<HWND>(reinterpret_cast<ULONG_PTR>(hWnd) | 1)) !=
           FALSE;
}

}  // namespace

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
