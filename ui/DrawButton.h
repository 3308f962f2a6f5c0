#pragma once

#include "ui/DrawCtrl.h"

// The effect of a press on a button.
enum : UINT {
    BTN_MODE_PUSH = 0,   // frame 1 while pressed; a release inside sends the command
    BTN_MODE_LATCH = 1,  // frame 1 for good, with the command
    BTN_MODE_CYCLE = 2,  // the next frame, with the command
    BTN_MODE_TAP = 3,    // the command alone, unless in frame 2
};

// A button whose looks are frames of its own size, stacked in one bitmap: the strip.
class CDrawButton : public CTextCtrl {
  public:
    CDrawButton(HWND owner, UINT id, int x, int y, int cx, int cy, UINT mode, BOOL visible);

    // Shows the strip and owns it; NULL changes nothing. Call it once, right after construction: an
    // earlier strip is not deleted.
    void SetImage(HBITMAP strip);
    // Shows a strip of another owner, which must outlive the button.
    void SetSharedImage(HBITMAP strip);

    BOOL Draw(HDC hdc, int x, int y) override;
    BOOL OnBtnDown(int x, int y) override;
    BOOL OnBtnUp(int x, int y) override;
    // Relative to the button; a right or bottom of 0 stands for its width or height.
    BOOL SetTextRect(const RECT* rc) override;

  protected:
    UINT m_nMode;
    HBITMAP m_hImage = nullptr;
    GdiObject<HBITMAP> m_hOwnedImage;
    int m_nFrames = 0;
    int m_nFrame = 0;  // the button's state
    RECT m_rcText{};

  private:
    void DrawFrame(HDC hdc, int x, int y) const;
};
