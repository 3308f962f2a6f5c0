#include "unit/picture/caption.h"

#include <windows.h>

#include <cwchar>
#include <memory>

#include "platform/gdi/device_context.h"

namespace unit {
namespace {

constexpr std::uint32_t kWhite = 0xF0F0F0;
constexpr std::uint32_t kBlack = 0x000000;

std::uint32_t InkOver(std::uint32_t under, std::uint32_t over, unsigned ink) {
    std::uint32_t mixed = 0;
    for (const unsigned shift : {16U, 8U, 0U})
        mixed |= ((under >> shift & 0xFF) * (255 - ink) + (over >> shift & 0xFF) * ink) / 255
                 << shift;
    return mixed;
}

}  // namespace

void Caption::DrawCharacters() {
    constexpr int kWidth = kCount * kCharacterWidth;
    auto surface = std::make_shared<platform::gdi::Surface>(kWidth, kHeight);
    const HDC dc = platform::gdi::CreateWindowDC(surface, {0, 0, kWidth, kHeight}, {});
    LOGFONTW description{};
    description.lfHeight = kHeight;
    description.lfWidth = kCharacterWidth;
    description.lfWeight = FW_BOLD;
    std::wcscpy(description.lfFaceName, L"Courier New");
    const HFONT font = CreateFontIndirectW(&description);
    const HGDIOBJ old_font = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(255, 255, 255));
    for (int character = 0; character < kCount; ++character) {
        const wchar_t text = static_cast<wchar_t>(kFirst + character);
        RECT cell{character * kCharacterWidth, 0, (character + 1) * kCharacterWidth, kHeight};
        DrawTextW(dc, &text, 1, &cell, DT_SINGLELINE | DT_NOPREFIX);
    }
    SelectObject(dc, old_font);
    DeleteObject(font);
    platform::gdi::DestroyWindowDC(dc);
    for (const std::uint32_t pixel : surface->pixels())
        ink_.push_back(static_cast<std::uint8_t>(pixel >> 8));
}

void Caption::Copy(Picture& picture, int x, int y, int character, std::uint32_t color) const {
    for (int row = 0; row < kHeight; ++row) {
        const std::uint8_t* ink =
            &ink_[static_cast<std::size_t>(row * kCount + character) * kCharacterWidth];
        std::uint32_t* pixel = &picture.pixels[picture.Offset(x, y + row)];
        for (int column = 0; column < kCharacterWidth; ++column)
            if (ink[column] != 0)
                pixel[column] = InkOver(pixel[column], color, ink[column]);
    }
}

void Caption::Draw(Picture& picture, int x, int y, std::string_view text) {
    if (ink_.empty())
        DrawCharacters();
    const auto draw = [&](int left, int top, std::uint32_t color) {
        for (const char character : text) {
            Copy(picture, left, top, character - kFirst, color);
            left += kCharacterWidth;
        }
    };
    draw(x + 1, y + 1, kBlack);
    draw(x, y, kWhite);
}

}  // namespace unit
