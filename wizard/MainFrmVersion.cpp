#include <cstdio>
#include <cwchar>
#include <iterator>
#include <memory>

#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

void CMainFrame::ReadToolVersion() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    NKDbgPrintfW(L"%s\t%S, %s\r\n", kLogPrefix, "CMainFrame::OnCreate", path);
    GetVersionInfo(path);
}

// The tool's version is the one thing that is told on the standard output.
void CMainFrame::GetVersionInfo(LPCWSTR path) {
    const DWORD size = GetFileVersionInfoSizeW(path, nullptr);
    if (size == 0) {
        std::printf("Error in GetFileVersionInfoSize: %d\n", static_cast<int>(GetLastError()));
        return;
    }
    const auto block = std::make_unique<BYTE[]>(size);
    if (!GetFileVersionInfoW(path, 0, size, block.get())) {
        std::printf("Error in GetFileVersionInfo: %d\n", static_cast<int>(GetLastError()));
        return;
    }
    void* found = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.get(), L"\\", &found, &length)) {
        std::printf("Error in VerQueryValue: %d\n", static_cast<int>(GetLastError()));
        return;
    }
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    wchar_t text[32] = {};
    wsprintfW(text, L"%d.%d.%02d", HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
              HIWORD(info.dwFileVersionLS));
    // Three numbers of five digits would not fit.
    std::wcsncpy(m_szToolVersion, text, std::size(m_szToolVersion) - 1);

    std::printf("File Version: %u.%u.%u.%u\n", HIWORD(info.dwFileVersionMS),
                LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                LOWORD(info.dwFileVersionLS));
    std::printf("Product Version: %u.%u.%u.%u\n", HIWORD(info.dwProductVersionMS),
                LOWORD(info.dwProductVersionMS), HIWORD(info.dwProductVersionLS),
                LOWORD(info.dwProductVersionLS));
}
