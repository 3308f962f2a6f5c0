#include "platform/kernel/text.h"

#include <cstdint>

#include "control/utf8.h"

namespace platform::kernel {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

bool IsScalar(std::uint32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// Removes one code point from the front of `text`; each malformed byte gives the replacement.
wchar_t TakeUtf8(std::string_view& text) {
    const std::size_t length = control::Utf8Length(text);
    if (length == 0) {
        text.remove_prefix(1);
        return kReplacement;
    }
    const auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    std::uint32_t code = length == 1 ? byte(0) : byte(0) & (0x7FU >> length);
    for (std::size_t index = 1; index < length; ++index)
        code = (code << 6) | (byte(index) & 0x3F);
    text.remove_prefix(length);
    return static_cast<wchar_t>(code);
}

void AppendUtf8(std::string& out, std::uint32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (const wchar_t character : text) {
        const auto code = static_cast<std::uint32_t>(std::int32_t{character});
        AppendUtf8(out, IsScalar(code) ? code : kReplacement);
    }
    return out;
}

std::wstring FromUtf8(std::string_view text) {
    std::wstring out;
    while (!text.empty())
        out += TakeUtf8(text);
    return out;
}

std::wstring FromUtf16(std::u16string_view text) {
    std::wstring out;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const std::uint32_t unit = text[index];
        const bool high = unit >= 0xD800 && unit <= 0xDBFF;
        const std::uint32_t low = high && index + 1 < text.size() ? text[index + 1] : 0;
        if (low >= 0xDC00 && low <= 0xDFFF) {
            out += static_cast<wchar_t>(0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            ++index;
        } else {
            out += IsScalar(unit) ? static_cast<wchar_t>(unit) : kReplacement;
        }
    }
    return out;
}

std::wstring FromNarrow(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (const char character : text)
        out += static_cast<wchar_t>(static_cast<unsigned char>(character));
    return out;
}

}  // namespace platform::kernel
