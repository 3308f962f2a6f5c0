#include <windows.h>

#include <msgqueue.h>
#include <pm.h>

#include <iterator>

#include "app/log/DebugLog.h"
#include "power/CPowerDetector.h"
#include "power/PowerQueue.h"

namespace {

constexpr char kDetector[] = "CPowerDetector::ThreadProc_PowerDetector";
constexpr char kCommonCtrl[] = "CPowerDetector::ThreadProc_PowerCommonCtrl";

constexpr DWORD kReadBytes = kQueuedNotifications * kNotificationBytes;
constexpr DWORD kReadMilliseconds = 1000;
// Between a wait that failed and the next one, which may fail as well.
constexpr DWORD kRetryMilliseconds = 100;

CPowerDetector* DetectorFrom(LPVOID pThis, const char* function,
                             LogSource source = std::source_location::current()) {
    if (pThis == nullptr)
        LogFailure(
            L"%s\t%S, (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n",
            function, GetLastError(), source);
    return static_cast<CPowerDetector*>(pThis);
}

}  // namespace

DWORD WINAPI CPowerDetector::ThreadProc_PowerDetector_static(LPVOID pThis) {
    CPowerDetector* const detector =
        DetectorFrom(pThis, "CPowerDetector::ThreadProc_PowerDetector_static");
    return detector == nullptr ? 0 : detector->ThreadProc_PowerDetector();
}

DWORD WINAPI CPowerDetector::ThreadProc_PowerCommonCtrl_static(LPVOID pThis) {
    CPowerDetector* const detector =
        DetectorFrom(pThis, "CPowerDetector::ThreadProc_PowerCommonCtrl_static");
    return detector == nullptr ? 0 : detector->ThreadProc_PowerCommonCtrl();
}

DWORD CPowerDetector::ThreadProc_PowerDetector() {
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL);
    const HANDLE waits[] = {m_hPowerMsgQueue, m_hDetectorStopEvent};
    do {
        const DWORD woken = WaitForMultipleObjects(std::size(waits), waits, FALSE, INFINITE);
        if (!m_bDetectorRunning)
            break;
        if (woken == WAIT_OBJECT_0)
            ReadNotification();
        else if (woken == WAIT_OBJECT_0 + 1)
            m_bDetectorRunning = FALSE;
        else
            Sleep(kRetryMilliseconds);
    } while (m_bDetectorRunning);
    return 0;
}

void CPowerDetector::ReadNotification() {
    alignas(POWER_BROADCAST) BYTE buffer[kReadBytes] = {};
    DWORD received = 0;
    DWORD flags = 0;
    if (!ReadMsgQueue(m_hPowerMsgQueue, buffer, sizeof buffer, &received, kReadMilliseconds,
                      &flags)) {
        const DWORD error = GetLastError();
        if (error != ERROR_TIMEOUT)
            LogFailure(L"%s\t%S, ReadMsgQueue() fail!!!, ErrorCode(%d), %S(%d)\r\n", kDetector,
                       error);
        return;
    }
    if (reinterpret_cast<const POWER_BROADCAST*>(buffer)->Message == PBT_POWERSTATUSCHANGE)
        BroadcastPowerStatus();
}

void CPowerDetector::BroadcastPowerStatus() {
    if (GetSystemPowerStatusEx2(&m_PowerStatus, sizeof m_PowerStatus, TRUE) == 0) {
        LogFailure(L"%s\t%S, GetSystemPowerStatusEx2() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   kDetector, GetLastError());
        return;
    }
    PostMessageW(HWND_BROADCAST, m_uMsgPowerStatus, m_PowerStatus.ACLineStatus,
                 m_PowerStatus.BatteryFlag);
}

DWORD CPowerDetector::ThreadProc_PowerCommonCtrl() {
    LogEntry(kCommonCtrl);
    // A request event that could not be had is left out: one bad handle would fail every wait.
    HANDLE waits[std::size(kRequests) + 1] = {};
    UINT acknowledges[std::size(kRequests)] = {};
    DWORD requests = 0;
    for (const RequestRow& row : kRequests) {
        if (this->*row.event == nullptr)
            continue;
        waits[requests] = this->*row.event;
        acknowledges[requests] = this->*row.acknowledge;
        ++requests;
    }
    waits[requests] = m_hCommonCtrlStopEvent;
    do {
        const DWORD woken = WaitForMultipleObjects(requests + 1, waits, FALSE, INFINITE);
        if (!m_bCommonCtrlRunning)
            break;
        if (woken < WAIT_OBJECT_0 + requests)
            PostMessageW(HWND_BROADCAST, acknowledges[woken - WAIT_OBJECT_0], 0, 0);
        else if (woken == WAIT_OBJECT_0 + requests)
            m_bCommonCtrlRunning = FALSE;
        else
            Sleep(kRetryMilliseconds);
    } while (m_bCommonCtrlRunning);
    LogExit(kCommonCtrl);
    return 0;
}
