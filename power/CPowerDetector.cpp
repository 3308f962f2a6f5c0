#include "power/CPowerDetector.h"

#include <windows.h>

#include <msgqueue.h>
#include <pm.h>

#include <iterator>

#include "app/log/DebugLog.h"
#include "app/thread/ThreadEnd.h"

namespace {

constexpr char kInit[] = "CPowerDetector::Init";
constexpr char kDeInit[] = "CPowerDetector::DeInit";
constexpr char kDetector[] = "CPowerDetector::ThreadProc_PowerDetector";
constexpr char kCommonCtrl[] = "CPowerDetector::ThreadProc_PowerCommonCtrl";

// Room for one broadcast record and its power-state name.
constexpr DWORD kNotificationBytes = 216;
constexpr DWORD kQueuedNotifications = 3;
constexpr DWORD kReadBytes = kQueuedNotifications * kNotificationBytes;
constexpr DWORD kReadMilliseconds = 1000;

// Between a wait or a read that failed and the next one, which may fail as well.
constexpr DWORD kRetryMilliseconds = 100;

constexpr int kWakeAttempts = 100;
constexpr DWORD kWakeInterval = 10;
// For a thread that could not be woken; it may end for another reason.
constexpr DWORD kUnwokenThreadLimit = 1000;

UINT RegisterMessage(const wchar_t* name, LogSource source = std::source_location::current()) {
    const UINT message = RegisterWindowMessageW(name);
    if (message == 0)
        LogFailure(L"%s\t%S, RegisterWindowMessage() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError(), source);
    return message;
}

// A message that could not be registered is 0, which is WM_NULL: it must not go out.
void Broadcast(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != 0)
        PostMessageW(HWND_BROADCAST, message, wParam, lParam);
}

HANDLE CreateAutoResetEvent(const wchar_t* name,
                            LogSource source = std::source_location::current()) {
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, name);
    if (event == nullptr)
        LogFailure(L"%s\t%S, CreateEvent() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError(), source);
    return event;
}

HANDLE OpenRequest(const wchar_t* name, LogSource source = std::source_location::current()) {
    const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, name);
    return event != nullptr ? event : CreateAutoResetEvent(name, source);
}

HANDLE StartThread(LPTHREAD_START_ROUTINE entry, CPowerDetector* detector,
                   std::atomic<BOOL>& running, LogSource source = std::source_location::current()) {
    running = TRUE;
    const HANDLE thread = CreateThread(nullptr, 0, entry, detector, 0, nullptr);
    if (thread == nullptr) {
        LogFailure(L"%s\t%S, CreateThread() fail!!!, ErrorCode(%d), %S(%d)\r\n", kInit,
                   GetLastError(), source);
        running = FALSE;
    }
    return thread;
}

// FALSE when the thread could not be woken.
bool RequestStop(std::atomic<BOOL>& running, HANDLE stop_event,
                 LogSource source = std::source_location::current()) {
    running = FALSE;
    if (stop_event == nullptr)
        return true;
    for (int attempt = 0; attempt < kWakeAttempts; ++attempt) {
        if (SetEvent(stop_event))
            return true;
        if (attempt == 0)
            LogFailure(L"%s\t%S, SetEvent() fail!!!, ErrorCode(%d), %S(%d)\r\n", kDeInit,
                       GetLastError(), source);
        Sleep(kWakeInterval);
    }
    return false;
}

void Close(HANDLE& handle) {
    if (handle != nullptr)
        CloseHandle(handle);
    handle = nullptr;
}

// Keeps the handle of a thread that does not end.
void JoinThread(HANDLE& thread, bool woken) {
    if (thread != nullptr &&
        WaitForThreadEnd(thread, woken ? kThreadEndLimit : kUnwokenThreadLimit))
        Close(thread);
}

CPowerDetector* DetectorFrom(LPVOID pThis, const char* function,
                             LogSource source = std::source_location::current()) {
    if (pThis == nullptr)
        LogFailure(
            L"%s\t%S, (NULL==pThis) fail!!!, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n",
            function, GetLastError(), source);
    return static_cast<CPowerDetector*>(pThis);
}

}  // namespace

CPowerDetector::~CPowerDetector() {
    DeInit();
}

BOOL CPowerDetector::Init() {
    LogEntry(kInit);
    RegisterMessages();
    OpenRequests();
    const BOOL ready = StartCommonCtrl() && RequestNotifications() && StartDetector();
    if (!ready)
        DeInit();
    LogExit(kInit);
    return ready;
}

void CPowerDetector::RegisterMessages() {
    m_uMsgSuspendAck = RegisterMessage(L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_");
    m_uMsgResumeAck = RegisterMessage(L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_");
    m_uMsgOffAck = RegisterMessage(L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_");
}

void CPowerDetector::OpenRequests() {
    m_hPowerSuspendRequest = OpenRequest(L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_");
    m_hPowerResumeRequest = OpenRequest(L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_");
    m_hPowerOffRequest = OpenRequest(L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_");
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
    m_uMsgPowerStatus = RegisterMessage(kPowerStatusMessage);
    m_hDetectorStopEvent = CreateAutoResetEvent(nullptr);
    if (m_hDetectorStopEvent == nullptr)
        return false;
    m_hDetectorThread = StartThread(ThreadProc_PowerDetector_static, this, m_bDetectorRunning);
    return true;
}

void CPowerDetector::DeInit() {
    LogEntry(kDeInit);
    const bool detector_woken = RequestStop(m_bDetectorRunning, m_hDetectorStopEvent);
    const bool common_ctrl_woken = RequestStop(m_bCommonCtrlRunning, m_hCommonCtrlStopEvent);
    JoinThread(m_hDetectorThread, detector_woken);
    JoinThread(m_hCommonCtrlThread, common_ctrl_woken);
    StopNotifications();
    // What a thread waits on must outlive it.
    if (m_hDetectorThread == nullptr) {
        if (m_hPowerMsgQueue != nullptr && !CloseMsgQueue(m_hPowerMsgQueue))
            LogFailure(L"%s\t%S, CloseMsgQueue() fail!!!, ErrorCode(%d), %S(%d)\r\n", kDeInit,
                       GetLastError());
        m_hPowerMsgQueue = nullptr;
        Close(m_hDetectorStopEvent);
    }
    if (m_hCommonCtrlThread == nullptr) {
        Close(m_hCommonCtrlStopEvent);
        Close(m_hPowerSuspendRequest);
        Close(m_hPowerResumeRequest);
        Close(m_hPowerOffRequest);
    }
    LogExit(kDeInit);
}

void CPowerDetector::StopNotifications() {
    if (m_hPowerNotifications == nullptr)
        return;
    if (StopPowerNotifications(m_hPowerNotifications) != ERROR_SUCCESS)
        LogFailure(L"%s\t%S, StopPowerNotifications() fail!!!, ErrorCode(%d), %S(%d)\r\n", kDeInit,
                   GetLastError());
    m_hPowerNotifications = nullptr;
}

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
        // The record that was not read ends the next wait at once.
        Sleep(kRetryMilliseconds);
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
    Broadcast(m_uMsgPowerStatus, m_PowerStatus.ACLineStatus, m_PowerStatus.BatteryFlag);
}

DWORD CPowerDetector::ThreadProc_PowerCommonCtrl() {
    LogEntry(kCommonCtrl);
    // Of several requests at once a wait reports the first.
    const struct {
        HANDLE event;
        UINT acknowledge;
    } requests[] = {{m_hPowerSuspendRequest, m_uMsgSuspendAck},
                    {m_hPowerResumeRequest, m_uMsgResumeAck},
                    {m_hPowerOffRequest, m_uMsgOffAck}};
    // A missing event is left out: every wait would fail.
    HANDLE waits[std::size(requests) + 1] = {};
    UINT acknowledges[std::size(requests)] = {};
    DWORD count = 0;
    for (const auto& request : requests) {
        if (request.event == nullptr)
            continue;
        waits[count] = request.event;
        acknowledges[count] = request.acknowledge;
        ++count;
    }
    waits[count] = m_hCommonCtrlStopEvent;
    do {
        const DWORD woken = WaitForMultipleObjects(count + 1, waits, FALSE, INFINITE);
        if (!m_bCommonCtrlRunning)
            break;
        if (woken < WAIT_OBJECT_0 + count)
            Broadcast(acknowledges[woken - WAIT_OBJECT_0], 0, 0);
        else if (woken == WAIT_OBJECT_0 + count)
            m_bCommonCtrlRunning = FALSE;
        else
            Sleep(kRetryMilliseconds);
    } while (m_bCommonCtrlRunning);
    LogExit(kCommonCtrl);
    return 0;
}
