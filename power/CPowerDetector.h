#pragma once

#include <windows.h>

#include <atomic>

// The program's member of the unit's power coordination, on two threads of its own. One broadcasts
// MSG_POWER_STATUS when the power supply changes; the other answers the unit's named suspend,
// resume and power-off requests with a broadcast each. Both only post messages. Failures are
// logged.
class CPowerDetector {
  public:
    CPowerDetector() = default;
    CPowerDetector(const CPowerDetector&) = delete;
    CPowerDetector& operator=(const CPowerDetector&) = delete;
    ~CPowerDetector();

    // Creates what the threads wait on and starts them. FALSE, with everything released again,
    // without a stop event, the notification queue or the notifications; a thread that cannot be
    // started and a request event that cannot be had are only missing. Once, on the window's
    // thread.
    BOOL Init();

    // Ends the threads and releases everything; both threads have ended when it returns. Messages
    // sent to the caller's windows are let in meanwhile. Any number of times, on the window's
    // thread.
    void DeInit();

    // The threads, with the object as argument.
    static DWORD WINAPI ThreadProc_PowerDetector_static(LPVOID pThis);
    static DWORD WINAPI ThreadProc_PowerCommonCtrl_static(LPVOID pThis);
    DWORD ThreadProc_PowerDetector();
    DWORD ThreadProc_PowerCommonCtrl();

  private:
    struct RequestRow {
        const wchar_t* event_name;
        const wchar_t* acknowledge_name;
        HANDLE CPowerDetector::*event;
        UINT CPowerDetector::*acknowledge;
    };
    static const RequestRow kRequests[3];  // suspend, resume, power-off: the order of answering

    void OpenRequests();
    bool StartCommonCtrl();
    bool RequestNotifications();
    bool StartDetector();
    void ReadNotification();
    void BroadcastPowerStatus();

    // A running flag is set before its thread exists, so that a stop always comes after it.
    HANDLE m_hDetectorStopEvent = nullptr;
    std::atomic<BOOL> m_bDetectorRunning{FALSE};
    HANDLE m_hPowerMsgQueue = nullptr;
    HANDLE m_hPowerNotifications = nullptr;
    UINT m_uMsgPowerStatus = 0;
    HANDLE m_hCommonCtrlStopEvent = nullptr;
    std::atomic<BOOL> m_bCommonCtrlRunning{FALSE};
    HANDLE m_hPowerSuspendRequest = nullptr;
    HANDLE m_hPowerResumeRequest = nullptr;
    HANDLE m_hPowerOffRequest = nullptr;
    UINT m_uMsgSuspendAck = 0;
    UINT m_uMsgResumeAck = 0;
    UINT m_uMsgOffAck = 0;
    SYSTEM_POWER_STATUS_EX2 m_PowerStatus{};  // the detector thread alone
    HANDLE m_hDetectorThread = nullptr;
    HANDLE m_hCommonCtrlThread = nullptr;
};
