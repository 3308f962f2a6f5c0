#include "ui/CtrlText.h"

#include <algorithm>
#include <iterator>
#include <string_view>

CCtrlText::CCtrlText() {
    StoreFont(L"Fixedsys", 0, 14, 0, DEFAULT_CHARSET);
}

int CCtrlText::StoreText(LPCWSTR text, int format) {
    if (format > 0)
        m_uFormat = static_cast<UINT>(format);
    if (text == nullptr)
        return 0;
    const std::wstring_view source(text);
    // Copied before the old text goes: the caller may pass a part of it.
    auto copy = std::make_unique<WCHAR[]>(source.size() + 1);
    std::copy(source.begin(), source.end(), copy.get());
    m_pszText = std::move(copy);
    m_nTextLen = static_cast<int>(source.size());
    return m_nTextLen;
}

BOOL CCtrlText::StoreFont(LPCWSTR face, int width, int height, int weight, int charSet) {
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

COLORREF CCtrlText::StoreColor(COLORREF color) {
    return std::exchange(m_crText, color);
}

void CCtrlText::DrawIn(HDC hdc, RECT rc, int length) const {
    if (!m_pszText)
        return;
    const int old_mode = SetBkMode(hdc, TRANSPARENT);
    const COLORREF old_color = SetTextColor(hdc, m_crText);
    {
        const SelectScope font(hdc, m_hFont.Get());
        DrawTextW(hdc, m_pszText.get(), length, &rc, m_uFormat);
    }
    SetTextColor(hdc, old_color);
    SetBkMode(hdc, old_mode);
}
