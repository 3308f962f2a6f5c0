#include "MStar_C4/ScalerDevice.h"

#include "MStar_C4/MStar_C4_Scaler.h"
#include "app/log/DebugLog.h"

HANDLE g_hScalerDevice = nullptr;
HANDLE g_hAtscNotifyEvent = nullptr;

namespace {

constexpr DWORD kPollMilliseconds = 100;
// No driver is loaded later in the system's start than this tick count.
constexpr DWORD kSystemStartMilliseconds = 12000;
constexpr int kMoreAttempts = 121;

void CloseDevice() {
    if (IsUsable(g_hScalerDevice))
        CloseHandle(g_hScalerDevice);
    g_hScalerDevice = nullptr;
}

// The last error of the attempt, which a success may leave as it was.
DWORD OpenDevice() {
    CloseDevice();
    SetLastError(ERROR_SUCCESS);
    g_hScalerDevice =
        CreateFileW(L"SCA0:", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    return GetLastError();
}

bool IsMissing(DWORD error) {
    return !IsUsable(g_hScalerDevice) || error == ERROR_DEV_NOT_EXIST;
}

// The last error of the last attempt.
DWORD WaitForDevice(DWORD error) {
    for (int attempt = 0; IsMissing(error) && attempt < kMoreAttempts;) {
        Sleep(kPollMilliseconds);
        if (GetTickCount() <= kSystemStartMilliseconds)
            continue;
        error = OpenDevice();
        ++attempt;
    }
    return error;
}

bool FindDevice(const char* function) {
    DWORD error = OpenDevice();
    if (IsUsable(g_hScalerDevice))
        return true;
    error = WaitForDevice(error);
    if (IsMissing(error)) {
        LogFailure(L"%s\t%S, CreateFile() fail!!!, ErroCode(%d), %S(%d)\r\n", function, error);
        return false;
    }
    Sleep(kPollMilliseconds);
    return true;
}

bool HoldEvent(const char* function) {
    g_hAtscNotifyEvent = CreateEventW(nullptr, FALSE, FALSE, L"AtscNotify");
    if (g_hAtscNotifyEvent != nullptr)
        return true;
    LogFailure(L"%s\t%S, CreateEvent() fail!!!, ErroCode(%d), %S(%d)\r\n", function,
               GetLastError());
    return false;
}

}  // namespace

BOOL Mstar_C4_Scaler_Init() {
    LogEntry(__func__);
    Mstar_C4_Scaler_DeInit();
    const BOOL opened = FindDevice(__func__) && HoldEvent(__func__);
    if (!opened)
        Mstar_C4_Scaler_DeInit();
    LogExit(__func__);
    return opened;
}

void Mstar_C4_Scaler_DeInit() {
    LogEntry(__func__);
    if (g_hAtscNotifyEvent != nullptr) {
        CloseHandle(g_hAtscNotifyEvent);
        g_hAtscNotifyEvent = nullptr;
    }
    CloseDevice();
    Mstar_C4_Scaler_FreeMemory();
    LogExit(__func__);
}

void Mstar_C4_Scaler_FreeMemory() {
    LogEntry(__func__);
    LogExit(__func__);
}
