#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "platform/gdi/text_font.h"
#include "platform/gdi/text_ink.h"
#include "platform/gdi/text_shape.h"

namespace platform::gdi {

// One line of text in one font. With the GDI lock held.
class TextLine {
  public:
    TextLine(std::shared_ptr<const TextFont> font, std::wstring_view text);

    // In pixels, without what sticks out of the last character.
    int width() const;
    const ShapedText& shaped() const { return shaped_; }
    // Made when it is first asked for.
    const Ink& ink() const;

  private:
    std::shared_ptr<const TextFont> font_;
    ShapedText shaped_;
    mutable std::optional<Ink> ink_;
};

}  // namespace platform::gdi
