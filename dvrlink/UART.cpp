// Start and stop of the link: its locks, its port and its receive thread.
#include "dvrlink/UART.h"

#include <new>

#include "app/log/DebugLog.h"
#include "app/thread/ThreadEnd.h"
#include "dvrlink/Commands.h"
#include "dvrlink/LinkState.h"

std::atomic<HANDLE> g_hComPort{nullptr};
std::atomic<BOOL> g_bReceiveRunning{FALSE};
BYTE g_bySendBuffer[kMaxFrameBytes] = {};
DWORD g_dwSendLength = 0;
std::atomic<CRITICAL_SECTION*> g_pSendLock{nullptr};
std::atomic<CRITICAL_SECTION*> g_pCheckSumLock{nullptr};

namespace {

HANDLE g_hReceiveThread = nullptr;  // the window's thread alone

bool IsOpen(HANDLE port) {
    return port != nullptr && port != INVALID_HANDLE_VALUE;
}

BOOL CreateLock(std::atomic<CRITICAL_SECTION*>& lock, const char* function,
                LogSource source = std::source_location::current()) {
    if (lock != nullptr)
        return TRUE;
    auto* const made = new (std::nothrow) CRITICAL_SECTION;
    if (made == nullptr) {
        LogNoMemory(function, source);
        return FALSE;
    }
    InitializeCriticalSection(made);
    lock = made;
    return TRUE;
}

void DeleteLock(std::atomic<CRITICAL_SECTION*>& lock) {
    CRITICAL_SECTION* const held = lock.exchange(nullptr);
    if (held == nullptr)
        return;
    DeleteCriticalSection(held);
    delete held;
}

BOOL SetLine(HANDLE port, const char* function) {
    DCB settings{};
    settings.DCBlength = sizeof settings;
    if (!GetCommState(port, &settings)) {
        LogFailure(L"%s\t%S, GetCommState() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return FALSE;
    }
    settings.BaudRate = 460800;
    settings.ByteSize = 8;
    settings.Parity = NOPARITY;
    settings.StopBits = ONESTOPBIT;
    if (!SetCommState(port, &settings)) {
        LogFailure(L"%s\t%S, SetCommState() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return FALSE;
    }
    return TRUE;
}

BOOL SetTimeouts(HANDLE port, const char* function) {
    // A read of one byte returns with the byte, or empty after 100 ms.
    COMMTIMEOUTS timeouts{};
    timeouts.ReadIntervalTimeout = 0;
    timeouts.ReadTotalTimeoutMultiplier = 50;
    timeouts.ReadTotalTimeoutConstant = 50;
    timeouts.WriteTotalTimeoutMultiplier = 10;
    timeouts.WriteTotalTimeoutConstant = 1000;
    if (!SetCommTimeouts(port, &timeouts)) {
        LogFailure(L"%s\t%S, SetCommTimeouts() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return FALSE;
    }
    return TRUE;
}

BOOL OpenLinkPort(const char* function) {
    const HANDLE port =
        CreateFileW(L"COM9:", GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (!IsOpen(port)) {
        LogFailure(L"%s\t%S, CreateFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        return FALSE;
    }
    if (!SetLine(port, function) || !SetTimeouts(port, function)) {
        CloseHandle(port);
        return FALSE;
    }
    SetCommMask(port, EV_RXCHAR | EV_ERR);
    g_hComPort = port;
    return TRUE;
}

void ReceiveByte() {
    BYTE byte = 0;
    DWORD received = 0;
    if (ReadFile(g_hComPort, &byte, 1, &received, nullptr) && received > 0)
        UART_ParseData(&byte, 1);
    else
        Sleep(1);
}

// Sends four queries, then reads byte by byte and feeds the parser until g_bReceiveRunning is
// clear.
DWORD WINAPI ThreadProc_COM_Rx(LPVOID) {
    LogEntry(__func__);
    constexpr BYTE kPayload[] = {0x00};
    for (const WORD command : {DvrCommand::DVR_RunningState, DvrCommand::DVR_Mode,
                               DvrCommand::FW_Upgrade_Version, DvrCommand::StorageCardStatus})
        UART_SendCommand(command | kQueryBit, kPayload, sizeof kPayload);
    do {
        ReceiveByte();
    } while (g_bReceiveRunning);
    LogExit(__func__);
    return 0;
}

void StartReceiving(const char* function) {
    if (g_hReceiveThread != nullptr)
        return;
    // Set before the thread exists: a stop that comes before its first instruction must win.
    g_bReceiveRunning = TRUE;
    const HANDLE thread = CreateThread(nullptr, 0, ThreadProc_COM_Rx, nullptr, 0, nullptr);
    if (thread == nullptr || thread == INVALID_HANDLE_VALUE) {
        LogFailure(L"%s\t%S, CreateThread() fail!!!, ErrorCode(%d), %S(%d)\r\n", function,
                   GetLastError());
        g_bReceiveRunning = FALSE;
        return;
    }
    g_hReceiveThread = thread;
}

}  // namespace

BOOL Memory_Init() {
    const BOOL send_lock = CreateLock(g_pSendLock, __func__);
    const BOOL sum_lock = CreateLock(g_pCheckSumLock, __func__);
    return send_lock && sum_lock;
}

BOOL Memory_DeInit() {
    DeleteLock(g_pSendLock);
    DeleteLock(g_pCheckSumLock);
    return TRUE;
}

BOOL COM_Init() {
    if (g_hComPort != nullptr)
        return TRUE;
    LogEntry(__func__);
    const BOOL opened = OpenLinkPort(__func__);
    LogExit(__func__);
    return opened;
}

BOOL COM_DeInit() {
    const HANDLE port = g_hComPort;
    if (port == nullptr)
        return TRUE;
    g_bReceiveRunning = FALSE;
    Sleep(10);
    g_hComPort = nullptr;
    return CloseHandle(port);
}

BOOL UART_Init() {
    LogEntry(__func__);
    if (!Memory_Init()) {
        LogFailure(L"%s\t%S, Memory_Init() fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
        return FALSE;
    }
    if (!COM_Init()) {
        const DWORD error = GetLastError();
        g_bReceiveRunning = FALSE;
        LogFailure(L"%s\t%S, COM_Init() fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__, error);
        LogExit(__func__);
        return FALSE;
    }
    StartReceiving(__func__);
    LogExit(__func__);
    return TRUE;
}

BOOL UART_DeInit() {
    g_bReceiveRunning = FALSE;
    if (g_hReceiveThread != nullptr) {
        // Port and locks must outlive the thread.
        if (!WaitForThreadEnd(g_hReceiveThread, kThreadEndLimit))
            return TRUE;
        CloseHandle(g_hReceiveThread);
        g_hReceiveThread = nullptr;
    }
    Sleep(10);
    if (!COM_DeInit())
        LogFailure(L"%s\t%S, COM_DeInit() fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
    if (!Memory_DeInit())
        LogFailure(L"%s\t%S, Memory_DeInit() fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
    return TRUE;
}

BOOL UART_HasThread() {
    return g_hReceiveThread != nullptr;
}
