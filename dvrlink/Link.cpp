#include "app/log/DebugLog.h"
#include "app/thread/ThreadEnd.h"
#include "dvrlink/LinkState.h"
#include "dvrlink/Receive.h"
#include "dvrlink/SerialPort.h"
#include "dvrlink/UART.h"

namespace {

HANDLE g_hReceiveThread = nullptr;  // the window's thread alone

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
        WaitForThreadEnd(g_hReceiveThread);
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
