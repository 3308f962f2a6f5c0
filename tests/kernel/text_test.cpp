#include "platform/kernel/text.h"

#include <gtest/gtest.h>

namespace {

using namespace platform::kernel;
using namespace std::string_literals;

TEST(Text, Utf8) {
    struct Row {
        std::string utf8;
        std::wstring wide;
        bool well_formed = true;
    };
    const Row rows[] = {
        {"", L""},
        {"a\0z"s, L"a\0z"s},
        {"\x7F\xC2\x80", L"\x7F\x80"},
        {"\xDF\xBF\xE0\xA0\x80", L"\x7FF\x800"},
        {"\xE6\x9B\xB4\xE6\x96\xB0", L"\u66F4\u65B0"},
        {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\xD7FF\xE000\xFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\x10000\x10FFFF"},
        {"\x80z", L"\xFFFDz", false},
        {"\xC0\x80", L"\xFFFD\xFFFD", false},                      // overlong
        {"\xE0\x9F\xBF", L"\xFFFD\xFFFD\xFFFD", false},            // overlong
        {"\xF0\x8F\xBF\xBF", L"\xFFFD\xFFFD\xFFFD\xFFFD", false},  // overlong
        {"\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD", false},            // a surrogate
        {"\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD", false},  // beyond the last
        {"\xF5\xFF", L"\xFFFD\xFFFD", false},
        {"\xE6\x9B", L"\xFFFD\xFFFD", false},  // cut off
        {"\xE6z\xC3", L"\xFFFDz\xFFFD", false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(FromUtf8(row.utf8), row.wide) << testing::PrintToString(row.utf8);
        if (row.well_formed) {
            EXPECT_EQ(ToUtf8(row.wide), row.utf8) << testing::PrintToString(row.utf8);
        }
    }
    EXPECT_EQ(ToUtf8(L"\xD800z\xDFFF"), "\xEF\xBF\xBDz\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)}),
              "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Text, Utf16AndNarrow) {
    struct Row {
        std::u16string utf16;
        std::wstring wide;
    };
    const Row rows[] = {
        {u"", L""},
        {u"\u66F4z", L"\u66F4z"},
        {u"\xD800\xDC00\xDBFF\xDFFF", L"\x10000\x10FFFF"},
        {u"\xD83D\xDE00z", L"\x1F600z"},
        {u"\xD800", L"\xFFFD"},
        {u"\xD800z", L"\xFFFDz"},
        {u"\xDC00\xD800", L"\xFFFD\xFFFD"},
        {u"\xD800\xD800\xDC00", L"\xFFFD\x10000"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(FromUtf16(row.utf16), row.wide) << testing::PrintToString(row.utf16);
    EXPECT_EQ(FromNarrow("a\0\x7F\x80\xFF"s), L"a\0\x7F\x80\xFF"s);
}

}  // namespace
