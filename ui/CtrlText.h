#pragma once

#include <windows.h>

#include <memory>

#include "ui/GdiScope.h"

// The text of a drawn control and how it looks.
class CCtrlText {
  public:
    // Black, centred vertically on one line, in the default font.
    CCtrlText();

    // As CDrawCtrl::SetText, SetFont and SetTextColor promise.
    int StoreText(LPCWSTR text, int format);
    BOOL StoreFont(LPCWSTR face, int width, int height, int weight, int charSet);
    COLORREF StoreColor(COLORREF color);

    // Draws the first length characters, -1 for all; leaves the context as it was. Without a text
    // it draws nothing.
    void DrawIn(HDC hdc, RECT rc, int length) const;

    std::unique_ptr<WCHAR[]> m_pszText;
    int m_nTextLen = 0;
    GdiObject<HFONT> m_hFont;
    COLORREF m_crText = 0;
    UINT m_uFormat = DT_VCENTER | DT_SINGLELINE;
};
