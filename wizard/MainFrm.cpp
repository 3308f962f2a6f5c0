#include "wizard/MainFrm.h"

#include <new>
#include <utility>

#include "app/log/DebugLog.h"
#include "dvrlink/UART.h"
#include "power/CPowerDetector.h"
#include "ui/CNotify.h"

std::atomic<CMainFrame*> g_pMainFrame{nullptr};

CMainFrame::CMainFrame() {
    MSG_POWER_STATUS = RegisterWindowMessageW(L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_");
}

CMainFrame::~CMainFrame() {
    ReleaseBackBuffer();
    ReleaseControls();
}

LRESULT CMainFrame::OnCreate(UINT, WPARAM, LPARAM, BOOL&) {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    LogEntry(kFunction);
    StartPowerDetector();
    LoadImages();
    m_pControls = std::make_unique<CCtrlList>();
    ReadToolVersion();
    CreateLabels();
    CreateButtons();
    ReadPowerSupply();
    if (!UART_Init())
        LogFailure(L"%s\t%S, UART_Init() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    ArmTimer(TIMER_WAIT_CARD_OUT, 100);
    LogExit(kFunction);
    return 0;
}

void CMainFrame::StartPowerDetector() {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    if (g_pCPowerDetector == nullptr)
        g_pCPowerDetector.reset(new (std::nothrow) CPowerDetector);
    if (g_pCPowerDetector == nullptr)
        LogFailure(L"%s\t%S, Allocate memory fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    else if (!g_pCPowerDetector->Init())
        LogFailure(L"%s\t%S, g_pCPowerDetector->Init() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   kFunction, GetLastError());
}

void CMainFrame::LoadImages() {
    constexpr char kFunction[] = "CMainFrame::OnCreate";
    // NULL names the program's own resources.
    m_hInst = nullptr;
    m_hBmpClose = static_cast<HBITMAP>(
        LoadImageW(nullptr, MAKEINTRESOURCEW(IDB_CLOSE), IMAGE_BITMAP, 0, 0, 0));
    if (m_hBmpClose == nullptr)
        LogFailure(L"%s\t%S, LoadImage() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
    m_hBmpButton = static_cast<HBITMAP>(
        LoadImageW(m_hInst, MAKEINTRESOURCEW(IDB_BUTTON), IMAGE_BITMAP, 0, 0, 0));
    if (m_hBmpButton == nullptr)
        LogFailure(L"%s\t%S, LoadImage() fail!!!, ErrorCode(%d), %S(%d)\r\n", kFunction,
                   GetLastError());
}

LRESULT CMainFrame::OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
    m_bClosing = true;
    g_pMainFrame = nullptr;
    // Waits for the receive thread: a report on its way still finds the frame whole.
    if (!UART_DeInit())
        LogFailure(L"%s\t%S, UART_DeInit() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "CMainFrame::OnDestroy", GetLastError());
    StopCompositeVideo();
    if (g_pCPowerDetector) {
        g_pCPowerDetector->DeInit();
        g_pCPowerDetector.reset();
    }
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
