#pragma once

#include <windows.h>

#include <atomic>

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
    // Kept for a move of the pen; no owner offers one.
    virtual BOOL OnBtnMove(int x, int y) = 0;

    // A positive format replaces the DrawTextW format; a text that is not NULL is copied. Returns
    // the copied length, 0 for NULL.
    virtual int SetText(LPCWSTR text, int format);
    // Average character width and cell height in pixels, the weight from 0 to 1000, as LOGFONTW has
    // them. FALSE, and the font stays, when the face is missing or the font cannot be made.
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

    // Draws the control off screen and copies it onto the owner window.
    BOOL RedrawOnOwner();
    // What stands for a missing picture.
    void DrawGreyBox(HDC hdc, int x, int y) const;
    // Tells the owner of a click and returns when the owner has handled it.
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
