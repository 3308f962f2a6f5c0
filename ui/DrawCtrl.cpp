#include "ui/DrawCtrl.h"

#include "ui/GdiScope.h"

namespace {

constexpr COLORREF kGrey = RGB(127, 127, 127);

}  // namespace

CDrawCtrl::CDrawCtrl(HWND owner, UINT id, const RECT& rc, BOOL visible)
    : m_hOwner(owner),
      m_nID(id),
      m_rcCtrl(rc),
      m_x(rc.left),
      m_y(rc.top),
      m_cx(rc.right - rc.left),
      m_cy(rc.bottom - rc.top),
      m_bVisible(visible) {}

int CDrawCtrl::SetText(LPCWSTR, int) {
    return 0;
}

BOOL CDrawCtrl::SetFont(LPCWSTR, int, int, int, int) {
    return TRUE;
}

COLORREF CDrawCtrl::SetTextColor(COLORREF) {
    return 0;
}

BOOL CDrawCtrl::SetTextRect(const RECT*) {
    return FALSE;
}

RECT* CDrawCtrl::GetRect(RECT* out) const {
    *out = m_rcCtrl;
    return out;
}

BOOL CDrawCtrl::HitTest(int x, int y) const {
    return PtInRect(&m_rcCtrl, POINT{x, y});
}

BOOL CDrawCtrl::SetVisible(BOOL visible) {
    return m_bVisible.exchange(visible);
}

BOOL CDrawCtrl::RedrawOnOwner() {
    const ClientDC owner(m_hOwner);
    const MemoryDC memory(owner.Get());
    const GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(owner.Get(), m_cx, m_cy));
    const SelectScope selected(memory.Get(), bitmap.Get());
    Draw(memory.Get(), 0, 0);
    BitBlt(owner.Get(), m_x, m_y, m_cx, m_cy, memory.Get(), 0, 0, SRCCOPY);
    return TRUE;
}

void CDrawCtrl::DrawGreyBox(HDC hdc, int x, int y) const {
    const RECT box = {x, y, x + m_cx, y + m_cy};
    const GdiObject<HBRUSH> brush(CreateSolidBrush(kGrey));
    FillRect(hdc, &box, brush.Get());
}

void CDrawCtrl::SendCommand() const {
    SendMessageW(m_hOwner, WM_XCOMMAND, m_nID, 0);
}
