#include "power/CPowerDetector.h"

#include <windows.h>

#include <msgqueue.h>
#include <pm.h>

#include "app/log/DebugLog.h"
#include "app/thread/ThreadEnd.h"
#include "power/PowerQueue.h"

const CPowerDetector::RequestRow CPowerDetector::kRequests[] = {
    {L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_",
     &CPowerDetector::m_hPowerSuspendRequest, &CPowerDetector::m_uMsgSuspendAck},
    {L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_",
     &CPowerDetector::m_hPowerResumeRequest, &CPowerDetector::m_uMsgResumeAck},
    {L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_", &CPowerDetector::m_hPowerOffRequest,
     &CPowerDetector::m_uMsgOffAck},
};

namespace {

constexpr char kInit[] = "CPowerDetector::Init";
constexpr char kDeInit[] = "CPowerDetector::DeInit";
constexpr int kWakeAttempts = 100;
constexpr DWORD kWakeAgain = 10;

HANDLE CreateAutoResetEvent(const wchar_t* name) {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, name);
    if (event == nullptr)
        LogFailure(L"%s\t%S, CreateEvent() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError());
    return event;
}

HANDLE StartThread(LPTHREAD_START_ROUTINE entry, CPowerDetector* detector,
                   std::atomic<BOOL>& running) {
    running = TRUE;
    const HANDLE thread = CreateThread(nullptr, 0, entry, detector, 0, nullptr);
    if (thread == nullptr) {
        LogFailure(L"%s\t%S, CreateThread() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError());
        running = FALSE;
    }
    return thread;
}

void RequestStop(std::atomic<BOOL>& running, HANDLE stop_event) {
    running = FALSE;
    if (stop_event == nullptr)
        return;
    // A thread that is not woken would be waited for for ever.
    for (int attempt = 0; attempt < kWakeAttempts && !SetEvent(stop_event); ++attempt)
        Sleep(kWakeAgain);
}

void Close(HANDLE& handle) {
    if (handle != nullptr)
        CloseHandle(handle);
    handle = nullptr;
}

void JoinThread(HANDLE& thread) {
    if (thread != nullptr)
        WaitForThreadEnd(thread);
    Close(thread);
}

}  // namespace

CPowerDetector::~CPowerDetector() {
    DeInit();
}

BOOL CPowerDetector::Init() {
    LogEntry(kInit);
    OpenRequests();
    const BOOL ready = StartCommonCtrl() && RequestNotifications() && StartDetector();
    if (!ready)
        DeInit();
    LogExit(kInit);
    return ready;
}

void CPowerDetector::OpenRequests() {
    for (const RequestRow& row : kRequests)
        this->*row.acknowledge = RegisterWindowMessageW(row.acknowledge_name);
    for (const RequestRow& row : kRequests) {
        HANDLE& event = this->*row.event;
        event = OpenEventW(EVENT_ALL_ACCESS, FALSE, row.event_name);
        if (event == nullptr)
            event = CreateAutoResetEvent(row.event_name);
    }
}

bool CPowerDetector::StartCommonCtrl() {
    m_hCommonCtrlStopEvent = CreateAutoResetEvent(nullptr);
    if (m_hCommonCtrlStopEvent == nullptr)
        return false;
    m_hCommonCtrlThread =
        StartThread(ThreadProc_PowerCommonCtrl_static, this, m_bCommonCtrlRunning);
    return true;
}

bool CPowerDetector::RequestNotifications() {
    MSGQUEUEOPTIONS options{};
    options.dwSize = sizeof options;
    options.dwFlags = 0;
    options.dwMaxMessages = kQueuedNotifications;
    options.cbMaxMessage = kNotificationBytes;
    options.bReadAccess = TRUE;
    m_hPowerMsgQueue = CreateMsgQueue(L"_KESTA_Technology_Inc_Lumarin_PowerNotify", &options);
    if (m_hPowerMsgQueue == nullptr) {
        LogFailure(L"%s\t%S, CreateMsgQueue() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError());
        return false;
    }
    m_hPowerNotifications =
        RequestPowerNotifications(m_hPowerMsgQueue, PBT_RESUME | PBT_POWERSTATUSCHANGE);
    if (m_hPowerNotifications == nullptr) {
        LogFailure(L"%s\t%S, RequestPowerNotifications() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError());
        return false;
    }
    return true;
}

bool CPowerDetector::StartDetector() {
    m_uMsgPowerStatus =
        RegisterWindowMessageW(L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_");
    m_hDetectorStopEvent = CreateAutoResetEvent(nullptr);
    if (m_hDetectorStopEvent == nullptr)
        return false;
    m_hDetectorThread = StartThread(ThreadProc_PowerDetector_static, this, m_bDetectorRunning);
    return true;
}

void CPowerDetector::DeInit() {
    LogEntry(kDeInit);
    RequestStop(m_bDetectorRunning, m_hDetectorStopEvent);
    RequestStop(m_bCommonCtrlRunning, m_hCommonCtrlStopEvent);
    // What the threads wait on must outlive them.
    JoinThread(m_hDetectorThread);
    JoinThread(m_hCommonCtrlThread);
    if (m_hPowerNotifications != nullptr) {
        if (StopPowerNotifications(m_hPowerNotifications) != ERROR_SUCCESS)
            LogFailure(L"%s\t%S, StopPowerNotifications() fail!!!, ErrorCode(%d), %S(%d)\r\n",
                       kDeInit, GetLastError());
        m_hPowerNotifications = nullptr;
    }
    if (m_hPowerMsgQueue != nullptr) {
        if (!CloseMsgQueue(m_hPowerMsgQueue))
            LogFailure(L"%s\t%S, CloseMsgQueue() fail!!!, ErrorCode(%d), %S(%d)\r\n", kDeInit,
                       GetLastError());
        m_hPowerMsgQueue = nullptr;
    }
    Close(m_hDetectorStopEvent);
    Close(m_hCommonCtrlStopEvent);
    for (const RequestRow& row : kRequests)
        Close(this->*row.event);
    LogExit(kDeInit);
}
