#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/gdi/surface.h"

namespace unit {

// Reads the screen as the driver in front of it does: the texts that stand there, and the buttons
// by their captions or their looks.
class ScreenReader {
  public:
    // Reads a picture of the graphics plane, which must outlive the reader.
    explicit ScreenReader(const platform::gdi::Surface& surface) : surface_(surface) {}

    bool Shows(std::wstring_view text) const { return Find(text) != nullptr; }
    // The first text that starts so; empty when none does.
    std::wstring TextStartingWith(std::wstring_view start) const;
    // The middle of the text's box.
    std::optional<POINT> PlaceOf(std::wstring_view text) const;
    // The middle of the red close button at the top right, while it is there.
    std::optional<POINT> CloseButton() const;

    std::vector<std::wstring> Texts() const;
    const platform::gdi::Surface& surface() const { return surface_; }

  private:
    const platform::gdi::PlacedText* Find(std::wstring_view text) const;

    const platform::gdi::Surface& surface_;
};

}  // namespace unit
