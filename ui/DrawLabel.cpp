#include "ui/DrawLabel.h"

namespace {

constexpr COLORREF kTransparent = RGB(255, 0, 255);

}  // namespace

CDrawLabel::CDrawLabel(HWND owner, UINT id, const RECT* rc, UINT flags, BOOL visible)
    : CTextCtrl(owner, id, *rc, visible), m_nFlags(flags) {}

BOOL CDrawLabel::Draw(HDC hdc, int x, int y) {
    if (!m_bVisible)
        return FALSE;
    if (m_nFlags & LBL_IMAGE)
        DrawPicture(hdc, x, y);
    if (m_nFlags & LBL_TEXT)
        DrawTextIn(hdc, {x, y, x + m_cx, y + m_cy}, m_nTextLen);
    return TRUE;
}

void CDrawLabel::DrawPicture(HDC hdc, int x, int y) const {
    if (m_hImage.Get() == nullptr) {
        DrawGreyBox(hdc, x, y);
        return;
    }
    const MemoryDC memory(hdc);
    const SelectScope selected(memory.Get(), m_hImage.Get());
    TransparentImage(hdc, x, y, m_cx, m_cy, memory.Get(), 0, 0, m_cx, m_cy, kTransparent);
}

BOOL CDrawLabel::OnBtnDown(int x, int y) {
    if (!m_bVisible || m_bPressed || !HitTest(x, y))
        return FALSE;
    m_bPressed = TRUE;
    return TRUE;
}

BOOL CDrawLabel::OnBtnUp(int x, int y) {
    if (!m_bVisible || !m_bPressed)
        return FALSE;
    m_bPressed = FALSE;
    if (HitTest(x, y))
        SendCommand();
    return FALSE;
}
