#pragma once

#include <string>
#include <string_view>

namespace platform::kernel {

// Conversions between text encodings. WCHAR is the host's 32-bit wchar_t, one code point each.
// Malformed input becomes U+FFFD.
std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);
std::wstring FromUtf16(std::u16string_view text);
// Narrow text of the program: one byte, one character (ISO 8859-1).
std::wstring FromNarrow(std::string_view text);

}  // namespace platform::kernel
