#pragma once

#include "ui/CtrlText.h"
#include "ui/DrawCtrl.h"

// What a label draws.
enum : UINT {
    LBL_TEXT = 1,
    LBL_IMAGE = 2,  // its picture, of which the magenta pixels are transparent
};

// A rectangle with a text that fills it.
class CDrawLabel : public CDrawCtrl, protected CCtrlText {
  public:
    CDrawLabel(HWND owner, UINT id, const RECT* rc, UINT flags, BOOL visible);

    BOOL Draw(HDC hdc, int x, int y) override;
    BOOL Redraw() override;
    BOOL OnBtnDown(int x, int y) override;
    // Sends the command for a click but never takes the release: controls under the label see it.
    BOOL OnBtnUp(int x, int y) override;
    BOOL OnBtnMove(int x, int y) override;
    int SetText(LPCWSTR text, int format) override;
    BOOL SetFont(LPCWSTR face, int width, int height, int weight, int charSet) override;
    COLORREF SetTextColor(COLORREF color) override;

  protected:
    UINT m_nFlags;
    GdiObject<HBITMAP> m_hImage;
    BOOL m_bPressed = FALSE;

  private:
    void DrawPicture(HDC hdc, int x, int y) const;
};
