#include "platform/gdi/text_line.h"

#include <cmath>

namespace platform::gdi {

TextLine::TextLine(std::shared_ptr<const TextFont> font, std::wstring_view text)
    : font_(std::move(font)), shaped_(Shape(*font_, text)) {}

int TextLine::width() const {
    return static_cast<int>(std::lround(shaped_.edges.back()));
}

const Ink& TextLine::ink() const {
    if (!ink_)
        ink_ = DrawInk(*font_, shaped_);
    return *ink_;
}

}  // namespace platform::gdi
