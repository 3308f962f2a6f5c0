#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/surface.h"

namespace unit {

// Finds texts and buttons on the screen, as the driver does.
class ScreenReader {
  public:
    // `surface`, a copy of the graphics plane, must outlive the reader.
    explicit ScreenReader(const platform::gdi::Surface& surface) : surface_(surface) {}

    bool Shows(std::wstring_view text) const { return Find(text) != nullptr; }
    // The first text with that start; empty when there is none.
    std::wstring TextStartingWith(std::wstring_view start) const;
    // The captions of the buttons: the texts in the row at the bottom, with or without a picture.
    std::vector<std::wstring> Buttons() const;
    // The middle of the button with that caption.
    std::optional<POINT> PlaceOfButton(std::wstring_view caption) const;
    // The middle of the red close button at the top right; empty when the screen has none.
    std::optional<POINT> CloseButton() const;

    std::vector<std::wstring> Texts() const;
    const platform::gdi::Surface& surface() const { return surface_; }

  private:
    const platform::gdi::PlacedText* Find(std::wstring_view text) const;

    const platform::gdi::Surface& surface_;
};

}  // namespace unit
