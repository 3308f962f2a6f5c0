#include "dvrlink/UART.h"
#include "ui/CNotify.h"
#include "wizard/MainFrm.h"

namespace {

// The program brings no template of this number, so the about box never shows.
class CAboutDlg : public CDialogImpl<CAboutDlg> {
  public:
    static constexpr UINT IDD = 100;

    BEGIN_MSG_MAP(CAboutDlg)
    END_MSG_MAP()
};

}  // namespace

// Neither hook is registered with the message loop.
BOOL CMainFrame::PreTranslateMessage(MSG* pMsg) {
    return CFrameWindowImpl<CMainFrame>::PreTranslateMessage(pMsg);
}

BOOL CMainFrame::OnIdle() {
    return FALSE;
}

LRESULT CMainFrame::OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&) {
    m_pControls->OnBtnDown(LOWORD(lParam), HIWORD(lParam));
    return 0;
}

LRESULT CMainFrame::OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&) {
    m_pControls->OnBtnUp(LOWORD(lParam), HIWORD(lParam));
    return 0;
}

LRESULT CMainFrame::OnAppExit(WORD, WORD, HWND, BOOL&) {
    ::PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    return 0;
}

LRESULT CMainFrame::OnFileNew(WORD, WORD, HWND, BOOL&) {
    return 0;
}

LRESULT CMainFrame::OnAppAbout(WORD, WORD, HWND, BOOL&) {
    CAboutDlg about;
    about.DoModal(::GetActiveWindow());
    return 0;
}

bool CMainFrame::ShowNotice() {
    // A press can still be sent while the closing window waits for the link to end.
    if (m_pNotify == nullptr && !m_bClosing) {
        m_pNotify = std::make_unique<CNotify>(m_hInst, this);
        m_pNotify->DoModal(::GetActiveWindow());
        m_pNotify.reset();
    }
    return !m_bClosing;
}

void CMainFrame::Send(WORD command) {
    constexpr BYTE kPayload[] = {0x00};
    UART_SendCommand(command, kPayload, sizeof kPayload);
}

void CMainFrame::ArmTimer(WizardTimer timer, UINT milliseconds) {
    ::SetTimer(m_hWnd, timer, milliseconds, nullptr);
}

void CMainFrame::HideButtons() {
    m_pBtnNext->SetVisible(FALSE);
    m_pBtnUpdate->SetVisible(FALSE);
    m_pBtnSuspend->SetVisible(FALSE);
}

void CMainFrame::HideSuspendAndUpdate() {
    m_pBtnSuspend->SetVisible(FALSE);
    m_pBtnUpdate->SetVisible(FALSE);
}

void CMainFrame::ShowOnly(CDrawButton& button) {
    HideButtons();
    button.SetVisible(TRUE);
}

void CMainFrame::Repaint() {
    ::InvalidateRect(m_hWnd, nullptr, TRUE);
    ::UpdateWindow(m_hWnd);
}
