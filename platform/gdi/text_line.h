#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/gdi/text_font.h"

namespace platform::gdi {

// How much of each pixel a line of text covers, 0 to 255, in the smallest box that holds all of it.
struct Ink {
    RECT box{};  // relative to the line's left edge and the top of its cell
    std::vector<std::uint8_t> coverage;
};

// One line of text in one font. With the GDI lock held.
class TextLine {
  public:
    TextLine(std::shared_ptr<const TextFont> font, std::wstring text);

    // In pixels, without what sticks out of the last character.
    int width() const;
    // The left edge of every character and the right edge of the last one.
    std::span<const double> edges() const { return edges_; }
    // Made when it is first asked for.
    const Ink& ink() const;

  private:
    Ink Draw() const;

    std::shared_ptr<const TextFont> font_;
    std::vector<Glyph> glyphs_;
    std::vector<double> edges_;
    mutable std::optional<Ink> ink_;
};

}  // namespace platform::gdi
