#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/text_font.h"
#include "platform/gdi/text_line.h"

namespace platform::gdi {

// A line and where its cell stands.
struct PlacedLine {
    std::shared_ptr<const TextLine> line;
    int x;
    int y;
};

// A text in its rectangle, as DrawTextW's format says.
struct TextLayout {
    std::vector<PlacedLine> lines;
    int width = 0;  // of the widest line
    int height = 0;
};

// The text as it is to be read: without the marks of prefix characters, and on one line with blanks
// for line ends, as the format says.
std::wstring ReadableText(std::wstring_view text, UINT format);

// DT_VCENTER and DT_BOTTOM hold for several lines as well. With the GDI lock held.
TextLayout LayOut(const std::shared_ptr<const TextFont>& font, std::wstring_view text,
                  const RECT& rectangle, UINT format);

}  // namespace platform::gdi
