#pragma once

#include "ui/DrawCtrl.h"

// The controls of one owner window, in drawing order. The controls are not owned.
class CCtrlList {
  public:
    static constexpr int kMaxCtrls = 64;

    // Drops the control without a word when it is NULL or the list is full.
    void Add(CDrawCtrl* ctrl);

    // Paints every control at its place; later ones over earlier ones. TRUE.
    BOOL DrawAll(HDC hdc) const;

    // Offer the event to the controls in order; TRUE when one took it, and the rest is not asked.
    BOOL OnBtnDown(int x, int y) const;
    BOOL OnBtnUp(int x, int y) const;

  private:
    CDrawCtrl* m_aCtrls[kMaxCtrls] = {};
    int m_nCount = 0;
};
