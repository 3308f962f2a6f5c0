#include "MStar_C4/MStar_C4_Scaler.h"

#include <winioctl.h>

#include "app/log/DebugLog.h"

namespace {

// The open driver, and the event that is held while it is open.
HANDLE g_hScalerDevice = nullptr;
HANDLE g_hAtscNotifyEvent = nullptr;

bool IsUsable(HANDLE device) {
    return device != nullptr && device != INVALID_HANDLE_VALUE;
}

struct Request {
    DWORD code;
    DWORD output_bytes;  // zeroed and never read
    const wchar_t* failure;
};

constexpr DWORD ScalerCode(DWORD function) {
    return CTL_CODE(0x8001, function, METHOD_BUFFERED, FILE_ANY_ACCESS);
}

constexpr wchar_t kRefused[] = L"%s\t%S, DeviceIoControl() fail!!!, ErroCode(%d), %S(%d)\r\n";

constexpr Request kSwitchToScaler = {
    ScalerCode(0x81A), sizeof(DWORD),
    L"%s\t%S, OSKA sw to scaler fail!!!, ErroCode(%d), %S(%d)\r\n"};
constexpr Request kSwitchToGraphics = {ScalerCode(0x81B), sizeof(DWORD), kRefused};
constexpr Request kSetAlpha = {ScalerCode(0x81C), sizeof(DWORD),
                               L"%s\t%S, OSKA set alpha fail!!!, ErroCode(%d), %S(%d)\r\n"};
constexpr Request kSetColorKey = {
    ScalerCode(0x81E), sizeof(DWORD),
    L"%s\t%S, OSKA Scaler set ColorKey fail!!!, ErroCode(%d), %S(%d)\r\n"};
constexpr Request kChangeWindow = {ScalerCode(0x82C), sizeof(DWORD), kRefused};
constexpr Request kSetWindow = {CTL_CODE(0x1B, 6, METHOD_NEITHER, FILE_ANY_ACCESS), 0, kRefused};

static_assert(kSwitchToScaler.code == 0x80012068 && kSwitchToGraphics.code == 0x8001206C);
static_assert(kSetAlpha.code == 0x80012070 && kSetColorKey.code == 0x80012078);
static_assert(kChangeWindow.code == 0x800120B0 && kSetWindow.code == 0x001B001B);

#pragma pack(push, 1)
struct ColorKeyRecord {
    DWORD color;
    BYTE enable;
    BYTE padding[3];
};
#pragma pack(pop)
static_assert(sizeof(ColorKeyRecord) == 8 && offsetof(ColorKeyRecord, enable) == 4);

constexpr DWORD kPollMilliseconds = 100;
// No further attempt is made before the system has been up so long.
constexpr DWORD kSystemStartMilliseconds = 12000;
constexpr int kMoreAttempts = 121;

void CloseDevice() {
    if (IsUsable(g_hScalerDevice))
        CloseHandle(g_hScalerDevice);
    g_hScalerDevice = nullptr;
}

// Returns the attempt's last error, which a driver may set in a success too.
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

// Returns the last attempt's last error.
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

bool HasDevice(const char* function, LogSource source = std::source_location::current()) {
    if (IsUsable(g_hScalerDevice))
        return true;
    LogFailure(L"%s\t%S, Invalid Arguments!!!, ErroCode(%d), %S(%d)\r\n", function, GetLastError(),
               source);
    return false;
}

template <typename Record>
BOOL Send(const Request& request, const char* function, Record record,
          LogSource source = std::source_location::current()) {
    DWORD output = 0;
    DWORD returned = 0;
    const BOOL done = DeviceIoControl(g_hScalerDevice, request.code, &record, sizeof record,
                                      request.output_bytes == 0 ? nullptr : &output,
                                      request.output_bytes, &returned, nullptr);
    if (!done)
        LogFailure(request.failure, function, GetLastError(), source);
    return done;
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

BOOL Mstar_C4_Scaler_Sw2Scaler() {
    return HasDevice(__func__) && Send(kSwitchToScaler, __func__, DWORD{1});
}

BOOL Mstar_C4_Scaler_SW2GOP() {
    return HasDevice(__func__) ? Send(kSwitchToGraphics, __func__, DWORD{1}) : FALSE;
}

BOOL Mstar_C4_Scaler_SetAlpha(DWORD alpha) {
    return HasDevice(__func__) && Send(kSetAlpha, __func__, alpha);
}

BOOL Mstar_C4_Scaler_ColorKey(DWORD enable, DWORD color) {
    const ColorKeyRecord record = {color, static_cast<BYTE>(enable), {}};
    return HasDevice(__func__) && Send(kSetColorKey, __func__, record);
}

BOOL Mstar_C4_Scaler_ChangeDisplayWinddow(DWORD selector) {
    return HasDevice(__func__) ? Send(kChangeWindow, __func__, selector) : FALSE;
}

BOOL Mstar_C4_Scaler_SetWindow(const MstarScalerWindow* window) {
    if (!HasDevice(__func__))
        return FALSE;
    if (window == nullptr) {
        LogFailure(L"%s\t%S, Invalid Arguments!!!, ErroCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
        return FALSE;
    }
    LogEntry(__func__);
    MstarScalerWindow record = *window;
    record.flags[0] = 0;
    record.flags[1] = 1;
    record.padding[0] = record.padding[1] = 0;
    const BOOL done = Send(kSetWindow, __func__, record);
    LogExit(__func__);
    return done;
}

BOOL Mstar_C4_Scaler_SetWindow2(DWORD x, DWORD y, DWORD width, DWORD height) {
    if (!HasDevice(__func__))
        return FALSE;
    MstarScalerWindow window{};
    window.source_window[0] = 10;
    window.source_window[1] = 49;
    window.source_window[2] = 695;
    window.source_window[3] = 375;
    window.input_width = 720;
    window.input_height = 480;
    window.display_x = static_cast<WORD>(x);
    window.display_y = static_cast<WORD>(y);
    window.display_width = static_cast<WORD>(width);
    window.display_height = static_cast<WORD>(height);
    return Mstar_C4_Scaler_SetWindow(&window);
}

BOOL Mstar_C4_Scaler_ShowCompositeVideo() {
    if (!HasDevice(__func__))
        return FALSE;
    Mstar_C4_Scaler_SW2GOP();
    Mstar_C4_Scaler_Sw2Scaler();
    Mstar_C4_Scaler_SetAlpha(kScalerAlpha);
    Mstar_C4_Scaler_ColorKey(1, kColorKey);
    return TRUE;
}
