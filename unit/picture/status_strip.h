#pragma once

#include <string>

#include "unit/picture/picture.h"

namespace unit {

inline constexpr int kStripHeight = 48;

// Adds a strip of two lines of text below the picture. Hardware's thread.
void AppendStatusStrip(Picture& picture, const std::wstring& upper, const std::wstring& lower);

}  // namespace unit
