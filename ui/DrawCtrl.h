#pragma once

#include <windows.h>

#include <atomic>
#include <memory>

#include "ui/GdiScope.h"

// Sent to the owner window of a control that was clicked: wParam is the command id, lParam 0.
constexpr UINT WM_XCOMMAND = WM_USER + 1000;

// A control without a window of its own: its owner window paints it and offers it presses and
// releases, all on the owner's thread. Only SetVisible may be called from any thread.
class CDrawCtrl {
  public:
    CDrawCtrl(const CDrawCtrl&) = delete;
    CDrawCtrl& operator=(const CDrawCtrl&) = delete;
    virtual ~CDrawCtrl() = default;

    // Paints the control with its top-left corner at (x, y); FALSE when it is hidden.
    virtual BOOL Draw(HDC hdc, int x, int y) = 0;
    // Repaints this control alone, at once, on the owner window.
    virtual BOOL Redraw() = 0;
    // Offer a press or a release at a point of the owner's client area; TRUE when it was taken.
    virtual BOOL OnBtnDown(int x, int y) = 0;
    virtual BOOL OnBtnUp(int x, int y) = 0;
    // Nothing calls it.
    virtual BOOL OnBtnMove(int x, int y) = 0;

    // A positive format replaces the DrawTextW format; a text that is not NULL is copied. Returns
    // the copied length, 0 for NULL or, with the old text kept, without memory for the copy.
    virtual int SetText(LPCWSTR text, int format);
    // Average width and height of a character cell in pixels, the weight from 0 to 1000, as in
    // LOGFONTW. FALSE, and the font stays, when the face is missing or the font cannot be created.
    virtual BOOL SetFont(LPCWSTR face, int width, int height, int weight, int charSet);
    // Returns the previous colour.
    virtual COLORREF SetTextColor(COLORREF color);
    // FALSE when the text always fills the control.
    virtual BOOL SetTextRect(const RECT* rc);

    // The place in the owner's client area; returns `out`.
    RECT* GetRect(RECT* out) const;
    // The right and bottom edges are outside.
    BOOL HitTest(int x, int y) const;
    // Returns the previous flag. Does not repaint.
    BOOL SetVisible(BOOL visible);

  protected:
    CDrawCtrl(HWND owner, UINT id, const RECT& rc, BOOL visible);

    // Drawn in place of a missing picture.
    void DrawGreyBox(HDC hdc, int x, int y) const;
    // Reports a click to the owner and returns when the owner has handled it.
    void SendCommand() const;

    HWND m_hOwner;
    UINT m_nID;
    RECT m_rcCtrl;
    int m_x;
    int m_y;
    int m_cx;
    int m_cy;
    std::atomic<BOOL> m_bVisible;  // DVR reports write it, the owner's thread reads and writes it
};

// A control with a text: black, centred vertically on one line, in the default font until it is
// set.
class CTextCtrl : public CDrawCtrl {
  public:
    BOOL Redraw() override;
    BOOL OnBtnMove(int x, int y) override;
    int SetText(LPCWSTR text, int format) override;
    BOOL SetFont(LPCWSTR face, int width, int height, int weight, int charSet) override;
    COLORREF SetTextColor(COLORREF color) override;

  protected:
    CTextCtrl(HWND owner, UINT id, const RECT& rc, BOOL visible);

    // Draws the first length characters, -1 for all; leaves the context as it was. Without a text
    // it draws nothing.
    void DrawTextIn(HDC hdc, RECT rc, int length) const;

    std::unique_ptr<WCHAR[]> m_pszText;
    int m_nTextLen = 0;
    GdiObject<HFONT> m_hFont;
    COLORREF m_crText = 0;
    UINT m_uFormat = DT_VCENTER | DT_SINGLELINE;
};

// The controls of one owner window, in drawing order. The controls are not owned.
class CCtrlList {
  public:
    static constexpr int kMaxCtrls = 64;

    // Ignores NULL, and any control when the list is full.
    void Add(CDrawCtrl* ctrl);

    // Paints every control at its place; later ones over earlier ones. TRUE.
    BOOL DrawAll(HDC hdc) const;

    // Offer the event to the controls in order; TRUE when one took it. The rest is then not asked.
    BOOL OnBtnDown(int x, int y) const;
    BOOL OnBtnUp(int x, int y) const;

  private:
    CDrawCtrl* m_aCtrls[kMaxCtrls] = {};
    int m_nCount = 0;
};
