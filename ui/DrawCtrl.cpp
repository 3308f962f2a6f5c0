#include "ui/DrawCtrl.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

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

void CDrawCtrl::DrawGreyBox(HDC hdc, int x, int y) const {
    const RECT box = {x, y, x + m_cx, y + m_cy};
    const GdiObject<HBRUSH> brush(CreateSolidBrush(kGrey));
    FillRect(hdc, &box, brush.Get());
}

void CDrawCtrl::SendCommand() const {
    SendMessageW(m_hOwner, WM_XCOMMAND, m_nID, 0);
}

CTextCtrl::CTextCtrl(HWND owner, UINT id, const RECT& rc, BOOL visible)
    : CDrawCtrl(owner, id, rc, visible) {
    CTextCtrl::SetFont(L"Fixedsys", 0, 14, 0, DEFAULT_CHARSET);
}

BOOL CTextCtrl::Redraw() {
    const ClientDC owner(m_hOwner);
    const MemoryDC memory(owner.Get());
    const GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(owner.Get(), m_cx, m_cy));
    const SelectScope selected(memory.Get(), bitmap.Get());
    Draw(memory.Get(), 0, 0);
    BitBlt(owner.Get(), m_x, m_y, m_cx, m_cy, memory.Get(), 0, 0, SRCCOPY);
    return TRUE;
}

BOOL CTextCtrl::OnBtnMove(int, int) {
    return FALSE;
}

int CTextCtrl::SetText(LPCWSTR text, int format) {
    if (format > 0)
        m_uFormat = static_cast<UINT>(format);
    if (text == nullptr)
        return 0;
    const std::wstring_view source(text);
    // Copied before the old text is deleted: the caller may pass a part of it.
    std::unique_ptr<WCHAR[]> copy(new (std::nothrow) WCHAR[source.size() + 1]);
    if (copy == nullptr)
        return 0;
    *std::copy(source.begin(), source.end(), copy.get()) = L'\0';
    m_pszText = std::move(copy);
    m_nTextLen = static_cast<int>(source.size());
    return m_nTextLen;
}

BOOL CTextCtrl::SetFont(LPCWSTR face, int width, int height, int weight, int charSet) {
    if (face == nullptr || *face == L'\0')
        return FALSE;
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWidth = width;
    font.lfWeight = weight;
    font.lfCharSet = static_cast<BYTE>(charSet);
    const std::wstring_view name =
        std::wstring_view(face).substr(0, std::size(font.lfFaceName) - 1);
    std::copy(name.begin(), name.end(), font.lfFaceName);
    const HFONT made = CreateFontIndirectW(&font);
    if (made == nullptr)
        return FALSE;
    m_hFont.Reset(made);
    return TRUE;
}

COLORREF CTextCtrl::SetTextColor(COLORREF color) {
    return std::exchange(m_crText, color);
}

void CTextCtrl::DrawTextIn(HDC hdc, RECT rc, int length) const {
    if (!m_pszText)
        return;
    const int old_mode = SetBkMode(hdc, TRANSPARENT);
    const COLORREF old_color = ::SetTextColor(hdc, m_crText);
    {
        const SelectScope font(hdc, m_hFont.Get());
        DrawTextW(hdc, m_pszText.get(), length, &rc, m_uFormat);
    }
    ::SetTextColor(hdc, old_color);
    SetBkMode(hdc, old_mode);
}

void CCtrlList::Add(CDrawCtrl* ctrl) {
    if (ctrl == nullptr || m_nCount >= kMaxCtrls)
        return;
    m_aCtrls[m_nCount] = ctrl;
    ++m_nCount;
}

BOOL CCtrlList::DrawAll(HDC hdc) const {
    std::for_each_n(m_aCtrls, m_nCount, [hdc](CDrawCtrl* ctrl) {
        RECT rc{};
        ctrl->GetRect(&rc);
        ctrl->Draw(hdc, rc.left, rc.top);
    });
    return TRUE;
}

BOOL CCtrlList::OnBtnDown(int x, int y) const {
    return std::any_of(m_aCtrls, m_aCtrls + m_nCount,
                       [x, y](CDrawCtrl* ctrl) { return ctrl->OnBtnDown(x, y) != FALSE; });
}

BOOL CCtrlList::OnBtnUp(int x, int y) const {
    return std::any_of(m_aCtrls, m_aCtrls + m_nCount,
                       [x, y](CDrawCtrl* ctrl) { return ctrl->OnBtnUp(x, y) != FALSE; });
}
