#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/gdi/gdi.h"
#include "platform/gdi/surface.h"
#include "tests/support/platform_test.h"

namespace tests {

namespace gdi = platform::gdi;
using Strings = std::vector<std::wstring>;
using Pixels = std::vector<std::uint32_t>;

struct FontSize {
    int width, height, weight;
};

inline HFONT MakeFont(const FontSize& size, std::wstring_view face = L"Arial", BYTE italic = 0) {
    LOGFONTW description{};
    description.lfWidth = size.width;
    description.lfHeight = size.height;
    description.lfWeight = size.weight;
    description.lfItalic = italic;
    description.lfCharSet = DEFAULT_CHARSET;
    face.copy(description.lfFaceName, LF_FACESIZE - 1);
    return CreateFontIndirectW(&description);
}

// A surface and its device context, as a window has them; text is white.
class Canvas {
  public:
    Canvas(int width, int height)
        : surface(std::make_shared<gdi::Surface>(width, height)),
          dc(gdi::CreateWindowDC(surface, {0, 0, width, height}, [this] {
              const auto lock = gdi::LockGdi();  // not held by the caller
              ++drawn;
          })) {
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, RGB(255, 255, 255));
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas() {
        gdi::DestroyWindowDC(dc);
        DeleteObject(font_);
    }

    std::uint32_t At(int x, int y) const { return surface->row(y)[x]; }
    Pixels AllPixels() const { return {surface->pixels().begin(), surface->pixels().end()}; }

    void FillWith(COLORREF color) { FillWith(color, {0, 0, surface->width(), surface->height()}); }
    void FillWith(COLORREF color, const RECT& rectangle) {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &rectangle, brush);
        DeleteObject(brush);
    }

    void UseFont(const FontSize& size, std::wstring_view face = L"Arial") {
        const HFONT font = MakeFont(size, face);
        SelectObject(dc, font);
        DeleteObject(std::exchange(font_, font));
    }
    int Draw(const std::wstring& text, RECT rectangle, UINT format = 0) {
        return DrawTextW(dc, text.c_str(), -1, &rectangle, format);
    }
    int WidthOf(const std::wstring& text) {
        RECT rectangle{};
        DrawTextW(dc, text.c_str(), static_cast<int>(text.size()), &rectangle,
                  DT_CALCRECT | DT_SINGLELINE | DT_NOPREFIX);
        return rectangle.right;
    }

    Strings Texts() const {
        Strings texts;
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

    std::shared_ptr<gdi::Surface> surface;
    int drawn = 0;
    HDC dc;

  private:
    HFONT font_ = nullptr;
};

}  // namespace tests
