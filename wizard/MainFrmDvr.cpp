#include "app/log/DebugLog.h"
#include "wizard/MainFrm.h"

void CMainFrame::Reset_DVR() {
    constexpr char kFunction[] = "CMainFrame::Reset_DVR";
    constexpr DWORD kControlRequest = 0x0881;
    constexpr BYTE kReset = 2;

    const HANDLE driver =
        CreateFileW(L"DVR1:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (driver == nullptr || driver == INVALID_HANDLE_VALUE) {
        LogFailure(L"%s\t%S, CreateFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
        return;
    }
    BYTE request = kReset;
    if (DeviceIoControl(driver, kControlRequest, &request, sizeof request, nullptr, 0, nullptr,
                        nullptr))
        Sleep(2000);
    else
        LogFailure(L"%s\t%S, DeviceIoControl() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    CloseHandle(driver);
}
