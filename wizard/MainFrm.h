#pragma once

#include <windows.h>

#include <atlapp.h>
#include <atlbase.h>
#include <atlframe.h>
#include <atlwin.h>

#include <atomic>
#include <memory>

#include "res/resource.h"
#include "ui/CtrlList.h"
#include "ui/DrawButton.h"
#include "ui/DrawCtrl.h"
#include "ui/DrawLabel.h"
#include "wizard/MainFrmScreens.h"
#include "wizard/VersionText.h"
#include "wizard/WizardModel.h"

class CNotify;
class CPowerDetector;

// The unit's broadcast of its power supply: wParam = AC line status, lParam = battery flag, a byte
// each. Registered when the frame is constructed, which is before any window exists.
extern UINT MSG_POWER_STATUS;

// The update wizard's window and its state.
//
// Everything runs on the window's thread but the two reports and the writes of the link's handlers,
// which run on the serial receive thread. That thread reaches the frame through g_pMainFrame alone
// and has ended when the window's destruction goes on after stopping the link.
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

    // The DVR's reports, on the receive thread. The results mean nothing.
    int DVR_RunningState(BYTE state);
    int StorageCardStatus(BYTE status, BYTE percent);

    // Takes the seven characters of the DVR's firmware version; any thread.
    void SetDvrVersion(const char* seven) { m_szDvrVersion.Store(seven); }

    // True from the moment that the window begins to be destroyed.
    bool IsClosing() const { return m_bClosing; }

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
    struct LabelRow;
    struct ButtonRow;
    static const LabelRow kLabelRows[];
    static const ButtonRow kButtonRows[];

    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM id, LPARAM, BOOL&);
    LRESULT OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnXCommand(UINT, WPARAM id, LPARAM, BOOL&);
    LRESULT OnPowerStatus(UINT, WPARAM wParam, LPARAM lParam, BOOL&);
    LRESULT OnAppExit(WORD, WORD, HWND, BOOL&);
    LRESULT OnFileNew(WORD, WORD, HWND, BOOL&);
    LRESULT OnAppAbout(WORD, WORD, HWND, BOOL&);

    void StartPowerDetector();
    void LoadImages();
    void CreateLabels();
    void CreateButtons();
    void ReadToolVersion();
    void GetVersionInfo(LPCWSTR path);
    void ReadPowerSupply();
    void ReleaseBackBuffer();
    void ReleaseControls();

    void CreateBackBuffer(HDC hdc);
    void CheckProgress();
    void FillBackground(int step);
    void ApplyStep(int step);
    CVersionText::Characters ShowDvrVersion(int step);
    void ApplyUpdating();
    void ApplyScreen(ScreenId screen);
    CDrawCtrl& GetControl(ControlId control);

    void OnNext();
    void StartCheckCard();
    void StartInsertCard();
    void StartResult();
    void OnUpdate();
    void StartUpdate();
    void RebootDvr();
    void OnSuspend();
    void SuspendSystem();

    void OnNotifyTimer();
    void OnWaitCardOutTimer();
    void OnWaitCardInTimer();
    void OnCompositeVideoTimer();
    void StartCompositeVideo();
    void StopCompositeVideo();

    void Restart();
    void ShowPowerOffline();

    void OnDvrNormal(int step);
    void OnCardOut();
    void OnCardIn();

    void Reset_DVR();

    // Runs the notice unless one is up already. False when the window has begun to close, before or
    // meanwhile; nothing may follow then.
    bool ShowNotice();
    void Send(WORD command);
    void ArmTimer(WizardTimer timer, UINT milliseconds);
    void HideButtons();
    void HideSuspendAndUpdate();
    void ShowOnly(CDrawButton& button);
    void Repaint();

    HINSTANCE m_hInst = nullptr;
    HBITMAP m_hBmpClose = nullptr;
    HBITMAP m_hBmpButton = nullptr;
    HDC m_hMemDC = nullptr;
    HBITMAP m_hMemBitmap = nullptr;
    HGDIOBJ m_hOldBitmap = nullptr;
    std::unique_ptr<CCtrlList> m_pControls;
    std::unique_ptr<CDrawLabel> m_pLblTitle;
    std::unique_ptr<CDrawLabel> m_pLblWarning;
    std::unique_ptr<CDrawLabel> m_pLblToolVersion;
    std::unique_ptr<CDrawLabel> m_pLblDvrVersion;
    std::unique_ptr<CDrawLabel> m_pLblLine1;
    std::unique_ptr<CDrawLabel> m_pLblLine2;
    std::unique_ptr<CDrawLabel> m_pLblLine3;
    std::unique_ptr<CDrawLabel> m_pLblLine4;
    std::unique_ptr<CDrawLabel> m_pLblNotice;
    std::unique_ptr<CDrawButton> m_pBtnNext;
    std::unique_ptr<CDrawButton> m_pBtnUpdate;
    std::unique_ptr<CDrawButton> m_pBtnSuspend;
    std::unique_ptr<CDrawButton> m_pBtnClose;

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
    std::unique_ptr<CNotify> m_pNotify;                    // while it is on screen
    std::atomic<BYTE> m_byACLineStatus{AC_LINE_ONLINE};    // the receive thread reads it
    std::unique_ptr<CPowerDetector> g_pCPowerDetector;
    std::atomic<BOOL> m_bACOffline{FALSE};
    std::atomic<BOOL> m_bCardStatusReceived{FALSE};  // the receive thread sets it
    bool m_bClosing = false;                         // the window's thread alone
};

// The one main frame; NULL while there is none and from the start of its destruction. The window's
// thread writes it, the receive thread reads it.
extern std::atomic<CMainFrame*> g_pMainFrame;
