#include "unit/picture/status_strip.h"

#include <windows.h>

#include <cwchar>

#include "platform/gdi/device_context.h"

namespace unit {
namespace {

constexpr COLORREF kBackground = RGB(32, 34, 38);
constexpr COLORREF kUpperColor = RGB(230, 230, 230);
constexpr COLORREF kLowerColor = RGB(160, 200, 255);
constexpr LONG kLineHeight = 20;
constexpr int kMargin = 4;

void DrawLine(HDC dc, int top, const std::wstring& text, COLORREF color) {
    RECT line{10, top, 10000, top + kLineHeight};
    SetTextColor(dc, color);
    DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &line,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
}

}  // namespace

void AppendStatusStrip(Picture& picture, const std::wstring& upper, const std::wstring& lower) {
    auto surface = std::make_shared<platform::gdi::Surface>(picture.width, kStripHeight);
    const RECT all{0, 0, picture.width, kStripHeight};
    const HDC dc = platform::gdi::CreateWindowDC(surface, all, {});
    const HBRUSH background = CreateSolidBrush(kBackground);
    FillRect(dc, &all, background);
    DeleteObject(background);
    LOGFONTW description{};
    description.lfHeight = 17;
    description.lfWeight = FW_NORMAL;
    std::wcscpy(description.lfFaceName, L"Arial");
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ old_font = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    DrawLine(dc, kMargin, upper, kUpperColor);
    DrawLine(dc, kMargin + kLineHeight, lower, kLowerColor);
    SelectObject(dc, old_font);
    DeleteObject(font);
    platform::gdi::DestroyWindowDC(dc);
    const auto pixels = surface->pixels();
    picture.pixels.insert(picture.pixels.end(), pixels.begin(), pixels.end());
    picture.height += kStripHeight;
}

}  // namespace unit
