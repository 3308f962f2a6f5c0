#pragma once

#include "ui/DrawCtrl.h"

// What a label draws.
enum : UINT {
    LBL_TEXT = 1,
    LBL_IMAGE = 2,  // its picture, of which the magenta pixels are transparent
};

// A rectangle with a text that fills it.
class CDrawLabel : public CTextCtrl {
  public:
    CDrawLabel(HWND owner, UINT id, const RECT* rc, UINT flags, BOOL visible);

    BOOL Draw(HDC hdc, int x, int y) override;
    BOOL OnBtnDown(int x, int y) override;
    // Sends the command for a click but never takes the release: controls under the label see it.
    BOOL OnBtnUp(int x, int y) override;

  protected:
    UINT m_nFlags;
    GdiObject<HBITMAP> m_hImage;
    BOOL m_bPressed = FALSE;

  private:
    void DrawPicture(HDC hdc, int x, int y) const;
};
