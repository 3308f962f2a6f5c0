#pragma once

#include "ui/CtrlText.h"
#include "ui/DrawCtrl.h"

// What a press does to a button.
enum : UINT {
    BTN_MODE_PUSH = 0,   // frame 1 while pressed; the command comes with a release inside
    BTN_MODE_LATCH = 1,  // frame 1 for good, with the command
    BTN_MODE_CYCLE = 2,  // the next frame, with the command
    BTN_MODE_TAP = 3,    // the command alone, unless in frame 2
};

// A button whose looks are frames of its own size, stacked in one bitmap: the strip.
class CDrawButton : public CDrawCtrl, protected CCtrlText {
  public:
    CDrawButton(HWND owner, UINT id, int x, int y, int cx, int cy, UINT mode, BOOL visible);
    ~CDrawButton() override;

    // The button owns the strip from now on; NULL changes nothing. To be called once, after the
    // construction: an earlier strip is not deleted.
    void SetImage(HBITMAP strip);
    // Goes on showing the strip but leaves its deletion to another owner, who must outlive the
    // button. Of several buttons with one strip, all but one detach it. Returns the strip.
    HBITMAP DetachImage();

    BOOL Draw(HDC hdc, int x, int y) override;
    BOOL Redraw() override;
    BOOL OnBtnDown(int x, int y) override;
    BOOL OnBtnUp(int x, int y) override;
    BOOL OnBtnMove(int x, int y) override;
    int SetText(LPCWSTR text, int format) override;
    BOOL SetFont(LPCWSTR face, int width, int height, int weight, int charSet) override;
    COLORREF SetTextColor(COLORREF color) override;
    // Relative to the button; a right or bottom of 0 stands for its width or height.
    BOOL SetTextRect(const RECT* rc) override;

  protected:
    UINT m_nMode;
    HBITMAP m_hImage = nullptr;
    bool m_bOwnsImage = false;
    int m_nFrames = 0;
    int m_nFrame = 0;  // the button's state
    RECT m_rcText{};

  private:
    void DrawFrame(HDC hdc, int x, int y) const;
};
