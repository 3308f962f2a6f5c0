#include "unit/picture/screen_reader.h"

#include <algorithm>

namespace unit {
namespace {

// The close button's place, and the colour of its normal face at one point of it.
constexpr RECT kCloseButton = {720, 8, 795, 44};
constexpr std::uint32_t kCloseFace = 0xE70010;
constexpr POINT kCloseSample = {735, 26};
// The row of the buttons with captions.
constexpr LONG kButtonsTop = 405;
constexpr LONG kButtonsBottom = 471;

POINT Middle(const RECT& box) {
    return {(box.left + box.right) / 2, (box.top + box.bottom) / 2};
}

bool IsCaption(const platform::gdi::PlacedText& placed) {
    const LONG middle = Middle(placed.box).y;
    return middle >= kButtonsTop && middle < kButtonsBottom;
}

}  // namespace

const platform::gdi::PlacedText* ScreenReader::Find(std::wstring_view text) const {
    const auto found = std::ranges::find(surface_.texts(), text, &platform::gdi::PlacedText::text);
    return found == surface_.texts().end() ? nullptr : &*found;
}

std::wstring ScreenReader::TextStartingWith(std::wstring_view start) const {
    for (const platform::gdi::PlacedText& placed : surface_.texts())
        if (placed.text.starts_with(start))
            return placed.text;
    return {};
}

std::vector<std::wstring> ScreenReader::Buttons() const {
    std::vector<std::wstring> captions;
    for (const platform::gdi::PlacedText& placed : surface_.texts())
        if (IsCaption(placed))
            captions.push_back(placed.text);
    return captions;
}

std::optional<POINT> ScreenReader::PlaceOfButton(std::wstring_view caption) const {
    const platform::gdi::PlacedText* placed = Find(caption);
    return placed && IsCaption(*placed) ? std::optional(Middle(placed->box)) : std::nullopt;
}

std::optional<POINT> ScreenReader::CloseButton() const {
    if (surface_.row(kCloseSample.y)[kCloseSample.x] != kCloseFace)
        return std::nullopt;
    return Middle(kCloseButton);
}

std::vector<std::wstring> ScreenReader::Texts() const {
    std::vector<std::wstring> texts;
    for (const platform::gdi::PlacedText& placed : surface_.texts())
        texts.push_back(placed.text);
    return texts;
}

}  // namespace unit
