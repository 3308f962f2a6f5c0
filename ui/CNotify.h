#pragma once

#include <windows.h>
// The framework's headers build on each other in this order.
#include <atlapp.h>
#include <atlbase.h>
#include <atlwin.h>

#include <memory>

#include "res/resource.h"
#include "ui/DrawButton.h"
#include "ui/DrawCtrl.h"
#include "ui/DrawLabel.h"

class CMainFrame;

// The notice's one button, as wParam of WM_XCOMMAND.
constexpr UINT IDC_BTN_OK = 1015;

// The full-screen modal notice that asks the user to remove the SD card from the DVR; DoModal runs
// it. All of it runs on the main frame's thread.
class CNotify : public CDialogImpl<CNotify> {
  public:
    enum { IDD = IDD_NOTIFY };

    // Points g_pMainFrame at the owner, which must not have begun to close.
    CNotify(HINSTANCE hInst, CMainFrame* pOwner);
    ~CNotify() override;

    BEGIN_MSG_MAP(CNotify)
        MESSAGE_HANDLER(WM_CLOSE, OnClose)
        MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
        MESSAGE_HANDLER(WM_ERASEBKGND, OnEraseBackground)
        MESSAGE_HANDLER(WM_TIMER, OnTimer)
        MESSAGE_HANDLER(WM_PAINT, OnPaint)
        MESSAGE_HANDLER(WM_LBUTTONDOWN, OnBtnDown)
        MESSAGE_HANDLER(WM_LBUTTONUP, OnBtnUp)
        MESSAGE_HANDLER(WM_KILLFOCUS, OnKillFocus)
        MESSAGE_HANDLER(WM_XCOMMAND, OnXCommand)
    END_MSG_MAP()

  private:
    LRESULT OnClose(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnEraseBackground(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnBtnDown(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnBtnUp(UINT, WPARAM, LPARAM lParam, BOOL&);
    LRESULT OnKillFocus(UINT, WPARAM, LPARAM, BOOL&);
    LRESULT OnXCommand(UINT, WPARAM wParam, LPARAM, BOOL&);

    // Covers the whole screen, task bar included.
    BOOL SetFullScreen();
    void SetUpOkButton();
    void CreateLabel(std::unique_ptr<CDrawLabel>& label, const RECT& rc, LPCWSTR text);
    void ReleaseControls();

    void ReadStep();
    // FALSE when what was drawn did not come onto the screen.
    BOOL DrawNotice(HDC hdc, HDC memory);
    // Offers a press or a release at the point in lParam to the controls.
    void OfferToControls(const char* function, BOOL (CCtrlList::*event)(int, int) const,
                         LPARAM lParam);

    HINSTANCE m_hInst;
    HBITMAP m_hBmpOk = nullptr;
    std::unique_ptr<CCtrlList> m_pControls;
    std::unique_ptr<CDrawLabel> m_pLblUpper;
    std::unique_ptr<CDrawLabel> m_pLblLower;
    std::unique_ptr<CDrawButton> m_pBtnOk;
    bool m_bDrawsAgain = false;
    int m_nStep = 0;  // the wizard's step at the last painting with a main frame
};
