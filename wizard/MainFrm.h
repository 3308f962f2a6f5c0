#pragma once

#include <windows.h>

#include <atlapp.h>
#include <atlbase.h>
#include <atlframe.h>
#include <atlwin.h>

#include <atomic>
#include <memory>
#include <span>

#include "app/log/DebugLog.h"
#include "res/resource.h"
#include "ui/DrawCtrl.h"
#include "ui/GdiScope.h"
#include "wizard/VersionText.h"
#include "wizard/WizardModel.h"

class CNotify;
class CPowerDetector;

// The unit's broadcast of its power supply (kPowerStatusMessage). Registered when the frame is
// constructed, which is before any window exists; 0 when that failed.
extern UINT MSG_POWER_STATUS;

// The update wizard's window and its state.
//
// Everything runs on the window's thread, except the DVR's reports (wizard/DvrReports.h), which run
// on the serial receive thread. That thread reaches the frame through g_pMainFrame alone. The
// window's destruction clears the pointer and waits for the thread; while UART_HasThread() is TRUE
// after that, the frame must not be deleted.
class CMainFrame : public CFrameWindowImpl<CMainFrame>,
                   public CUpdateUI<CMainFrame>,
                   public CMessageFilter,
                   public CIdleHandler {
  public:
    DECLARE_FRAME_WND_CLASS(nullptr, IDR_MAINFRAME)

    CMainFrame();
    CMainFrame(const CMainFrame&) = delete;
    CMainFrame& operator=(const CMainFrame&) = delete;
    ~CMainFrame() override;

    // The DVR's reports, on the receive thread. Nothing reads the results.
    int DVR_RunningState(BYTE state);
    int StorageCardStatus(BYTE status, BYTE percent);

    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL OnIdle() override;

    BEGIN_UPDATE_UI_MAP(CMainFrame)
    END_UPDATE_UI_MAP()

    BEGIN_MSG_MAP(CMainFrame)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnBtnDown)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnBtnUp)
        MESSAGE_HANDLER(WM_XCOMMAND, OnXCommand)
        MESSAGE_HANDLER(WM_CREATE, OnCreate)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
        MESSAGE_HANDLER(MSG_POWER_STATUS, OnPowerStatus)
        COMMAND_ID_HANDLER(ID_APP_EXIT, OnAppExit)
        COMMAND_ID_HANDLER(ID_FILE_NEW, OnFileNew)
        COMMAND_ID_HANDLER(ID_APP_ABOUT, OnAppAbout)
        CHAIN_MSG_MAP(CUpdateUI<CMainFrame>)
        CHAIN_MSG_MAP(CFrameWindowImpl<CMainFrame>)
    END_MSG_MAP()

  private:
    struct ControlRow;
    struct LabelPlace;
    struct ButtonPlace;
    struct Screens;

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM id, LPARAM, BOOL&);
    LRESULT OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnXCommand(UINT, WPARAM id, LPARAM, BOOL&);
    LRESULT OnPowerStatus(UINT, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
    LRESULT OnAppExit(WORD, WORD, HWND, BOOL&);
    LRESULT OnFileNew(WORD, WORD, HWND, BOOL&);
    LRESULT OnAppAbout(WORD, WORD, HWND, BOOL&);

    // FALSE once the window has begun to be destroyed; nothing new may begin then.
    static bool IsAlive();

    void StartPowerDetector();
    void StopPowerDetector();
    void LoadImages();
    void ReadToolVersion();
    void GetVersionInfo(LPCWSTR path);
    void ReadPowerSupply();
    void ReleaseBackBuffer();
    void Reset_DVR();
    void SuspendSystem();
    void StartCompositeVideo();
    void StopCompositeVideo();

    void CreateControls();
    void Apply(std::span<const ControlRow> rows);
    void ApplyStep(int step);
    CVersionText::Characters ShowDvrVersion(int step);
    void ApplyUpdating();
    void ApplyWait();
    void CreateBackBuffer(HDC hdc);
    void CheckProgress();
    void FillBackground(int step);
    void ShowPowerOffline();

    void OnNext();
    void StartCheckCard();
    void StartInsertCard();
    void StartResult();
    void OnUpdate();
    void StartUpdate();
    void RebootDvr();
    void OnSuspend();

    void OnNotifyTimer();
    void OnWaitCardOutTimer();
    void OnWaitCardInTimer();
    void OnCompositeVideoTimer();

    void Restart();

    void OnDvrNormal(int step);
    void ShowResult();
    void OnCardOut();
    void OnCardIn();

    // Runs the notice unless it is open already. FALSE when the window was closed meanwhile.
    bool ShowNotice(const char* function);
    // Sends a command to the DVR with the payload 0x00.
    void Send(WORD command);
    // FALSE, with a log line, when the timer could not be armed.
    bool ArmTimer(const char* function, WizardTimer timer, UINT milliseconds,
                  LogSource source = std::source_location::current());
    // Also for a control that could not be created.
    static void SetVisible(const std::unique_ptr<CDrawCtrl>& control, BOOL visible);
    void HideButtons();
    void HideSuspendAndUpdate();
    void ShowOnly(const std::unique_ptr<CDrawCtrl>& button);
    void Repaint();

    HINSTANCE m_hInst = nullptr;
    // The images outlive the buttons that show them.
    GdiObject<HBITMAP> m_hBmpClose;
    GdiObject<HBITMAP> m_hBmpButton;
    HDC m_hMemDC = nullptr;
    HBITMAP m_hMemBitmap = nullptr;
    HGDIOBJ m_hOldBitmap = nullptr;
    std::unique_ptr<CCtrlList> m_pControls;
    // The labels and buttons.
    std::unique_ptr<CDrawCtrl> m_pLblTitle;
    std::unique_ptr<CDrawCtrl> m_pLblWarning;
    std::unique_ptr<CDrawCtrl> m_pLblToolVersion;
    std::unique_ptr<CDrawCtrl> m_pLblDvrVersion;
    std::unique_ptr<CDrawCtrl> m_pLblLine1;
    std::unique_ptr<CDrawCtrl> m_pLblLine2;
    std::unique_ptr<CDrawCtrl> m_pLblLine3;
    std::unique_ptr<CDrawCtrl> m_pLblLine4;
    std::unique_ptr<CDrawCtrl> m_pLblNotice;
    std::unique_ptr<CDrawCtrl> m_pBtnNext;
    std::unique_ptr<CDrawCtrl> m_pBtnUpdate;
    std::unique_ptr<CDrawCtrl> m_pBtnSuspend;
    std::unique_ptr<CDrawCtrl> m_pBtnClose;

  public:
    // The receive thread writes these, the window's thread reads and writes them.
    std::atomic<int> m_nStep{STEP_POWER_ON};
    std::atomic<BYTE> m_byUpdatePercent{0};
    std::atomic<BYTE> m_byBinVersion{0};
    std::atomic<BYTE> m_byRunningState{DVR_RUNNING_STATE_INITIALIZING};
    CVersionText m_szDvrVersion;

  private:
    wchar_t m_szToolVersion[16] = {};
    std::atomic<BYTE> m_byCardStatus{kCardStatusUnknown};  // the receive thread writes it
    std::unique_ptr<CNotify> m_pNotify;                    // while it is on the screen
    std::atomic<BYTE> m_byACLineStatus{AC_LINE_ONLINE};    // the receive thread reads it
    std::unique_ptr<CPowerDetector> g_pCPowerDetector;
    std::atomic<BOOL> m_bACOffline{FALSE};
    std::atomic<BOOL> m_bCardStatusReceived{FALSE};  // the receive thread sets it
};

// The one main frame; NULL while there is none and from the start of its destruction. The window's
// thread writes it, the receive thread reads it.
extern std::atomic<CMainFrame*> g_pMainFrame;
