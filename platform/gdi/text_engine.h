#pragma once

#include <windows.h>

#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/gdi/font_library.h"
#include "platform/gdi/text_font.h"
#include "platform/gdi/text_line.h"

namespace platform::gdi {

// The font files, the fonts made from them, and a cache of the lines of text that were drawn last:
// painting a screen again costs no more than copying. With the GDI lock held.
class TextEngine {
  public:
    // Null, with one line about what is wrong in `problem`, when a font file is missing.
    static std::unique_ptr<TextEngine> Create(std::string& problem);

    std::shared_ptr<const TextFont> Font(const FontKey& key);
    std::shared_ptr<const TextLine> Line(const std::shared_ptr<const TextFont>& font,
                                         std::wstring text);

  private:
    using LineKey = std::pair<FontKey, std::wstring>;
    struct CachedLine {
        std::shared_ptr<const TextLine> line;
        std::list<const LineKey*>::iterator use;
    };

    TextEngine() = default;

    FontLibrary library_;
    std::map<FontKey, std::shared_ptr<const TextFont>> fonts_;
    std::map<LineKey, CachedLine> lines_;
    // The most recently used first.
    std::list<const LineKey*> uses_;
};

// The engine, started at the first call; null, with the last error set, when it does not start.
TextEngine* Texts();

// One line of text in a font of Texts().
std::shared_ptr<const TextLine> FindTextLine(const std::shared_ptr<const TextFont>& font,
                                             std::wstring text);

void DropTexts();

}  // namespace platform::gdi
