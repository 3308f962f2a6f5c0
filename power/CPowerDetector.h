#pragma once

#include <windows.h>

#include <atomic>

// The name of the unit's broadcast of its power supply, MSG_POWER_STATUS: wParam = AC line status,
// lParam = battery flag, a byte each.
inline constexpr wchar_t kPowerStatusMessage[] =
    L"_KESTA_Technology,Inc._All_APP_PowerStatusChange_";

// The program's part in the unit's power coordination, on two threads of its own. One broadcasts
// MSG_POWER_STATUS when the power supply changes; the other acknowledges the unit's named suspend,
// resume and power-off requests with a broadcast each. Both only post messages. Failures are
// logged.
class CPowerDetector {
  public:
    CPowerDetector() = default;
    CPowerDetector(const CPowerDetector&) = delete;
    CPowerDetector& operator=(const CPowerDetector&) = delete;
    ~CPowerDetector();

    // Creates what the threads wait on and starts them. FALSE, with everything released again,
    // without a stop event, the notification queue or the notifications. A thread that cannot be
    // started or a request event that cannot be created is left out. Once, on the window's thread.
    BOOL Init();

    // Ends the threads and releases everything. A thread that cannot be woken is left behind, with
    // the handles that it waits on. Dispatches messages that are sent to the caller's windows. Any
    // number of times, on the window's thread.
    void DeInit();

    // TRUE while a thread runs. After DeInit: one was left behind; it uses the object, which must
    // then never be deleted.
    BOOL HasThread() const {
        return m_hDetectorThread != nullptr || m_hCommonCtrlThread != nullptr;
    }

    // The threads, with the object as argument.
    static DWORD WINAPI ThreadProc_PowerDetector_static(LPVOID pThis);
    static DWORD WINAPI ThreadProc_PowerCommonCtrl_static(LPVOID pThis);
    DWORD ThreadProc_PowerDetector();
    DWORD ThreadProc_PowerCommonCtrl();

  private:
    void RegisterMessages();
    void OpenRequests();
    bool StartCommonCtrl();
    bool RequestNotifications();
    bool StartDetector();
    void StopNotifications();
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
