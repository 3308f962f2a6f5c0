#include "platform/kernel/text.h"

#include <cstdint>

namespace platform::kernel {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

bool IsScalar(std::uint32_t code) {
    return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// Takes one code point off the front of `text`; malformed bytes give the replacement, one a byte.
wchar_t TakeUtf8(std::string_view& text) {
    const auto byte = [&](std::size_t index) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[index]));
    };
    const std::uint32_t lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    std::uint32_t code = length < 2 ? lead : lead & (0x7FU >> length);
    bool valid = length != 0 && length <= text.size();
    for (std::size_t index = 1; valid && index < length; ++index) {
        valid = (byte(index) & 0xC0) == 0x80;
        code = (code << 6) | (byte(index) & 0x3F);
    }
    if (!valid || code < kSmallest[length] || !IsScalar(code)) {
        text.remove_prefix(1);
        return kReplacement;
    }
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
