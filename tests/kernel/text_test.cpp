#include "platform/kernel/text.h"

#include <gtest/gtest.h>

namespace platform::kernel {
namespace {

using namespace std::string_literals;

TEST(Text, WellFormedUtf8BothWays) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"", L""},
        {"a\0z"s, L"a\0z"s},
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", L"\x7F\x80\x7FF\x800"},
        {"\xE6\x9B\xB4\xE6\x96\xB0", L"\u66F4\u65B0"},
        {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\xD7FF\xE000\xFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\x10000\x10FFFF"},
    };
    for (const auto& [text, wide] : rows) {
        EXPECT_EQ(FromUtf8(text), wide) << testing::PrintToString(text);
        EXPECT_EQ(ToUtf8(wide), text) << testing::PrintToString(text);
    }
}

// Stray, overlong, surrogate, too great and cut off: one replacement a byte.
TEST(Text, MalformedTextBecomesReplacements) {
    for (const char* text : {"\x80", "\xC0\x80", "\xC3", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE6\x9B",
                             "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\xFF"}) {
        const std::wstring replaced(std::string(text).size(), L'\xFFFD');
        EXPECT_EQ(FromUtf8(text), replaced) << testing::PrintToString(text);
        EXPECT_EQ(FromUtf8(text + "z"s), replaced + L"z") << testing::PrintToString(text);
    }
    EXPECT_EQ(ToUtf8(L"\xD800z\xDFFF"), "\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)}),
              "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Text, Utf16AndNarrow) {
    EXPECT_EQ(FromUtf16(u"\u66F4z"), L"\u66F4z");
    EXPECT_EQ(FromUtf16(u"\xD800\xDC00\xDBFF\xDFFF"), L"\x10000\x10FFFF");
    EXPECT_EQ(FromUtf16(u"\xD800"), L"\xFFFD");
    EXPECT_EQ(FromUtf16(u"\xD800z"), L"\xFFFDz");
    EXPECT_EQ(FromUtf16(u"\xDC00\xD800"), L"\xFFFD\xFFFD");
    EXPECT_EQ(FromUtf16(u"\xD800\xD800\xDC00"), L"\xFFFD\x10000");
    EXPECT_EQ(FromNarrow("a\0\x7F\x80\xFF"s), L"a\0\x7F\x80\xFF"s);
}

}  // namespace
}  // namespace platform::kernel
