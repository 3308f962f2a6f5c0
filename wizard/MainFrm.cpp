// The frame's creation and destruction, and its use of the platform: images, version, DVR reset,
// suspend, composite video.
#include "wizard/MainFrm.h"

#include <pkfuncs.h>
#include <pm.h>
#include <winioctl.h>

#include <cstdio>
#include <cwchar>
#include <iterator>
#include <new>
#include <utility>

#include "MStar_C4/MStar_C4_Scaler.h"
#include "dvrlink/UART.h"
#include "power/CPowerDetector.h"
#include "ui/CNotify.h"

UINT MSG_POWER_STATUS = 0;
std::atomic<CMainFrame*> g_pMainFrame{nullptr};

namespace {

// A request of the unit's HAL; the device type is FILE_DEVICE_HAL.
constexpr DWORD kEnterSuspendMode = CTL_CODE(0x0101, 2056, METHOD_BUFFERED, FILE_ANY_ACCESS);
static_assert(kEnterSuspendMode == 0x01012020);

}  // namespace

CMainFrame::CMainFrame() {
    MSG_POWER_STATUS = RegisterWindowMessageW(kPowerStatusMessage);
    if (MSG_POWER_STATUS == 0)
        LogFailure(L"%s\t%S, RegisterWindowMessage() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::CMainFrame", GetLastError());
}

CMainFrame::~CMainFrame() {
    ReleaseBackBuffer();
}

bool CMainFrame::IsAlive() {
    return g_pMainFrame != nullptr;
}

LRESULT CMainFrame::OnCreate(UINT, WPARAM, LPARAM, BOOL&) {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    LogEntry(kFunction);
    StartPowerDetector();
    LoadImages();
    m_pControls.reset(new (std::nothrow) CCtrlList);
    if (m_pControls == nullptr)
        LogNoMemory(kFunction);
    ReadToolVersion();
    CreateControls();
    ReadPowerSupply();
    if (!UART_Init())
        LogFailure(L"%s\t%S, UART_Init() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    ArmTimer(kFunction, TIMER_WAIT_CARD_OUT, 100);
    LogExit(kFunction);
    return 0;
}

void CMainFrame::StartPowerDetector() {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    if (g_pCPowerDetector == nullptr)
        g_pCPowerDetector.reset(new (std::nothrow) CPowerDetector);
    if (g_pCPowerDetector == nullptr)
        LogNoMemory(kFunction);
    else if (!g_pCPowerDetector->Init())
        LogFailure(L"%s\t%S, g_pCPowerDetector->Init() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   kFunction, GetLastError());
}

void CMainFrame::StopPowerDetector() {
    if (!g_pCPowerDetector)
        return;
    g_pCPowerDetector->DeInit();
    // A thread that was left behind uses the detector to the end of the process.
    if (g_pCPowerDetector->HasThread()) {
        [[maybe_unused]] const CPowerDetector* const left = g_pCPowerDetector.release();
    }
    g_pCPowerDetector.reset();
}

void CMainFrame::LoadImages() {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    // NULL names the program's own resources.
    m_hInst = nullptr;
    m_hBmpClose.Reset(static_cast<HBITMAP>(
        LoadImageW(nullptr, MAKEINTRESOURCEW(IDB_CLOSE), IMAGE_BITMAP, 0, 0, 0)));
    if (m_hBmpClose.Get() == nullptr)
        LogFailure(L"%s\t%S, LoadImage() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    m_hBmpButton.Reset(static_cast<HBITMAP>(
        LoadImageW(m_hInst, MAKEINTRESOURCEW(IDB_BUTTON), IMAGE_BITMAP, 0, 0, 0)));
    if (m_hBmpButton.Get() == nullptr)
        LogFailure(L"%s\t%S, LoadImage() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
}

void CMainFrame::ReadToolVersion() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    NKDbgPrintfW(L"%s\t%S, %s\r\n", kLogPrefix, "CMainFrame::OnCreate", path);
    GetVersionInfo(path);
}

// Reports on the standard output, unlike the rest of the program.
void CMainFrame::GetVersionInfo(LPCWSTR path) {
    const DWORD size = GetFileVersionInfoSizeW(path, nullptr);
    if (size == 0) {
        std::printf("Error in GetFileVersionInfoSize: %d\n", static_cast<int>(GetLastError()));
        return;
    }
    const std::unique_ptr<BYTE[]> block(new (std::nothrow) BYTE[size]);
    if (block == nullptr || !GetFileVersionInfoW(path, 0, size, block.get())) {
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
    // Three numbers of five digits do not fit and are cut.
    std::wcsncpy(m_szToolVersion, text, std::size(m_szToolVersion) - 1);

    std::printf("File Version: %u.%u.%u.%u\n", HIWORD(info.dwFileVersionMS),
                LOWORD(info.dwFileVersionMS), HIWORD(info.dwFileVersionLS),
                LOWORD(info.dwFileVersionLS));
    std::printf("Product Version: %u.%u.%u.%u\n", HIWORD(info.dwProductVersionMS),
                LOWORD(info.dwProductVersionMS), HIWORD(info.dwProductVersionLS),
                LOWORD(info.dwProductVersionLS));
}

// The first broadcast comes only when the supply changes; until then this status counts.
void CMainFrame::ReadPowerSupply() {
    SYSTEM_POWER_STATUS_EX2 status{};
    if (GetSystemPowerStatusEx2(&status, sizeof status, TRUE) == 0) {
        LogFailure(L"%s\t%S, GetSystemPowerStatusEx2() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnCreate", GetLastError());
        return;
    }
    m_byACLineStatus = status.ACLineStatus;
    if (status.ACLineStatus == AC_LINE_OFFLINE)
        ShowPowerOffline();
}

LRESULT CMainFrame::OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
    g_pMainFrame = nullptr;
    // Waits for the receive thread: a report that it is handling still finds the frame.
    if (!UART_DeInit())
        LogFailure(L"%s\t%S, UART_DeInit() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnDestroy", GetLastError());
    StopCompositeVideo();
    StopPowerDetector();
    PostQuitMessage(0);
    return 0;
}

void CMainFrame::ReleaseBackBuffer() {
    constexpr char kFunction[] = "CMainFrame::~CMainFrame";
    if (m_hOldBitmap != nullptr && m_hMemDC == nullptr) {
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction);
    } else {
        if (m_hOldBitmap != nullptr)
            SelectObject(m_hMemDC, std::exchange(m_hOldBitmap, nullptr));
        if (m_hMemDC == nullptr)
            LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction);
        else if (!DeleteDC(std::exchange(m_hMemDC, nullptr)))
            LogFailure(L"%s\t%S, DeleteDC() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                       GetLastError());
    }
    if (m_hMemBitmap == nullptr)
        LogRefusal(L"%s\t%S, Invalid Arguments!!!, %S(%d)\r\n", kFunction);
    else if (!DeleteObject(std::exchange(m_hMemBitmap, nullptr)))
        LogFailure(L"%s\t%S, DeleteObject() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
}

// Neither hook is registered with the message loop.
BOOL CMainFrame::PreTranslateMessage(MSG* pMsg) {
    return CFrameWindowImpl<CMainFrame>::PreTranslateMessage(pMsg);
}

BOOL CMainFrame::OnIdle() {
    return FALSE;
}

LRESULT CMainFrame::OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&) {
    if (m_pControls)
        m_pControls->OnBtnDown(LOWORD(lParam), HIWORD(lParam));
    return 0;
}

LRESULT CMainFrame::OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&) {
    if (m_pControls)
        m_pControls->OnBtnUp(LOWORD(lParam), HIWORD(lParam));
    return 0;
}

LRESULT CMainFrame::OnAppExit(WORD, WORD, HWND, BOOL&) {
    ::PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    return 0;
}

LRESULT CMainFrame::OnFileNew(WORD, WORD, HWND, BOOL&) {
    return 0;
}

// The resources contain no about box.
LRESULT CMainFrame::OnAppAbout(WORD, WORD, HWND, BOOL&) {
    return 0;
}

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

void CMainFrame::SuspendSystem() {
    constexpr char kFunction[] = "CMainFrame::OnXCommand";
    DWORD magic = 0x5A5A;
    DWORD returned = 0;
    if (!KernelIoControl(kEnterSuspendMode, &magic, sizeof magic, nullptr, 0, &returned)) {
        LogFailure(
            L"%s\t%S, KernelIoControl( IOCTL_HAL_ENTER_SUSPEND_MODE ) fail!!!, ErrorCode(%d), "
            L"%S(%d)\r\n",
            kFunction, GetLastError());
        return;
    }
    NKDbgPrintfW(L"%s\t%S, SystemSuspend\r\n", kLogPrefix, kFunction);
    SetSystemPowerState(nullptr, POWER_STATE_OFF, POWER_FORCE);
}

void CMainFrame::StartCompositeVideo() {
    if (!Mstar_C4_Scaler_Init()) {
        LogFailure(L"%s\t%S, Mstar_C4_Scaler_Init() fail!!!, ErroCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnTimer", GetLastError());
        return;
    }
    Mstar_C4_Scaler_ChangeDisplayWinddow(0);
    Mstar_C4_Scaler_ShowCompositeVideo();
    Mstar_C4_Scaler_SetWindow2(0, 0, kScreenWidth, kScreenHeight);
    Mstar_C4_Scaler_SetAlpha(kScalerAlpha);
    Mstar_C4_Scaler_ColorKey(1, kColorKey);
}

void CMainFrame::StopCompositeVideo() {
    Mstar_C4_Scaler_ChangeDisplayWinddow(1);
    Mstar_C4_Scaler_SetAlpha(kScalerAlpha);
    Mstar_C4_Scaler_ColorKey(0, 0);
    Mstar_C4_Scaler_DeInit();
}

bool CMainFrame::ShowNotice(const char* function) {
    if (m_pNotify == nullptr) {
        m_pNotify.reset(new (std::nothrow) CNotify(m_hInst, this));
        if (m_pNotify == nullptr)
            LogNoMemory(function);
        else
            m_pNotify->DoModal(::GetActiveWindow());
        m_pNotify.reset();
    }
    return IsAlive();
}

void CMainFrame::Send(WORD command) {
    constexpr BYTE kPayload[] = {0x00};
    UART_SendCommand(command, kPayload, sizeof kPayload);
}

bool CMainFrame::ArmTimer(const char* function, WizardTimer timer, UINT milliseconds,
                          LogSource source) {
    if (::SetTimer(m_hWnd, timer, milliseconds, nullptr) != 0)
        return true;
    LogFailure(L"%s\t%S, SetTimer() fail!!!, ErrorCode(%d), %S(%d)\r\n", function, GetLastError(),
               source);
    return false;
}

void CMainFrame::SetVisible(const std::unique_ptr<CDrawCtrl>& control, BOOL visible) {
    if (control)
        control->SetVisible(visible);
}

void CMainFrame::HideButtons() {
    SetVisible(m_pBtnNext, FALSE);
    SetVisible(m_pBtnUpdate, FALSE);
    SetVisible(m_pBtnSuspend, FALSE);
}

void CMainFrame::HideSuspendAndUpdate() {
    SetVisible(m_pBtnSuspend, FALSE);
    SetVisible(m_pBtnUpdate, FALSE);
}

void CMainFrame::ShowOnly(const std::unique_ptr<CDrawCtrl>& button) {
    HideButtons();
    SetVisible(button, TRUE);
}

void CMainFrame::Repaint() {
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
    ::UpdateWindow(m_hWnd);
}
