#pragma once

#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/device_context.h"
#include "platform/gdi/surface.h"
#include "tests/support/platform_fixture.h"

namespace tests {

// A surface and a device context that draws on it, as a window has them.
class Canvas {
  public:
    Canvas(int width, int height)
        : surface(std::make_shared<platform::gdi::Surface>(width, height)),
          dc(platform::gdi::CreateWindowDC(surface, {0, 0, width, height}, [this] { ++drawn; })) {}
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() { platform::gdi::DestroyWindowDC(dc); }

    std::uint32_t At(int x, int y) const { return surface->row(y)[x]; }

    void FillWith(COLORREF color) { FillWith(color, {0, 0, surface->width(), surface->height()}); }
    void FillWith(COLORREF color, const RECT& rectangle) {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &rectangle, brush);
        DeleteObject(brush);
    }

    std::vector<std::wstring> Texts() const {
        std::vector<std::wstring> texts;
        for (const auto& placed : surface->texts())
            texts.push_back(placed.text);
        return texts;
    }

    // The smallest box around every pixel that is not black; empty without one.
    RECT InkBox() const {
        RECT box{surface->width(), surface->height(), 0, 0};
        for (int y = 0; y < surface->height(); ++y)
            for (int x = 0; x < surface->width(); ++x)
                if (At(x, y) != 0)
                    box = {std::min<LONG>(box.left, x), std::min<LONG>(box.top, y),
                           std::max<LONG>(box.right, x + 1), std::max<LONG>(box.bottom, y + 1)};
        return box.right == 0 ? RECT{} : box;
    }

    std::shared_ptr<platform::gdi::Surface> surface;
    int drawn = 0;
    HDC dc;
};

struct FontSize {
    int width;
    int height;
    int weight;
};

inline LOGFONTW Describe(std::wstring_view face, const FontSize& size) {
    LOGFONTW description{};
    description.lfWidth = size.width;
    description.lfHeight = size.height;
    description.lfWeight = size.weight;
    description.lfCharSet = DEFAULT_CHARSET;
    face.copy(description.lfFaceName, LF_FACESIZE - 1);
    return description;
}

// A font selected into a device context, transparent and in one colour.
class FontOn {
  public:
    FontOn(HDC dc, const FontSize& size, COLORREF color = RGB(255, 255, 255),
           std::wstring_view face = L"Arial")
        : dc_(dc) {
        const LOGFONTW description = Describe(face, size);
        font_ = CreateFontIndirectW(&description);
        previous_ = SelectObject(dc, font_);
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, color);
    }
    FontOn(const FontOn&) = delete;
    FontOn& operator=(const FontOn&) = delete;
    ~FontOn() {
        SelectObject(dc_, previous_);
        DeleteObject(font_);
    }

  private:
    HDC dc_;
    HFONT font_;
    HGDIOBJ previous_;
};

inline int Draw(HDC dc, const std::wstring& text, RECT rectangle, UINT format) {
    return DrawTextW(dc, text.c_str(), -1, &rectangle, format);
}

inline int WidthOf(HDC dc, const std::wstring& text) {
    SIZE size{};
    GetTextExtentPoint32W(dc, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

}  // namespace tests
