#include "platform/kernel/text.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace tests {
namespace {

using namespace platform::kernel;
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
                             "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\xFF"})
        EXPECT_EQ(FromUtf8(text + "z"s), std::wstring(std::string(text).size(), L'\xFFFD') + L"z")
            << testing::PrintToString(text);
    EXPECT_EQ(FromUtf8("\xE6\x9B"), L"\xFFFD\xFFFD");
    EXPECT_EQ(ToUtf8(std::wstring{0xD800, L'z', 0xDFFF, 0x110000, wchar_t(-1)}),
              "\xEF\xBF\xBDz\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Text, Utf16AndNarrow) {
    EXPECT_EQ(FromUtf16(u"\u66F4z\xD800\xDC00\xDBFF\xDFFF"), L"\u66F4z\x10000\x10FFFF");
    EXPECT_EQ(FromUtf16(u"\xDC00z\xD800\xD800\xDC00\xD800"), L"\xFFFDz\xFFFD\x10000\xFFFD");
    EXPECT_EQ(FromNarrow("a\0\x7F\x80\xFF"s), L"a\0\x7F\x80\xFF"s);
}

struct Printed {
    template <class... Arguments>
    Printed(const wchar_t* text, const wchar_t* how, Arguments... arguments)
        : expected(text), format(how) {
        const int length = wsprintfW(buffer, format, arguments...);
        EXPECT_EQ(length, lstrlenW(buffer));
    }

    std::wstring expected;
    const wchar_t* format;
    wchar_t buffer[1024];
};

// What the API's formatter prints according to its documentation.
TEST(WideFormat, PrintsAsTheApiDoes) {
    const char unterminated[] = {'a', 'b'};
    const std::wstring long_text(1500, L'x');
    const wchar_t* const no_text = nullptr;
    const Printed rows[] = {
        {L"", L""},
        {L"100%", L"%d%%", 100},
        {L"-7 4294967295 -1", L"%d %u %i", -7, -1, 0xFFFFFFFFU},
        {L"ff FF 0xff 0XFF 0", L"%x %X %#x %#X %#x", 255, 255, 255, 255, 0},
        {L"%+d % d %o %*d", L"%+d % d %o %*d"},
        {L"|   42|42   |00042|-0042|", L"|%5d|%-5d|%05d|%05d|", 42, 42, 42, -42},
        {L"|0x00ff|  0xff|0xff  |", L"|%#06x|%#6x|%-#6x|", 255, 255, 255},
        {L"|007|     007|     007|", L"|%.3d|%8.3d|%08.3d|", 7, 7, 7},
        {L"||1|", L"|%.0d|%.0d|", 0, 1},
        {L"-2147483648 80000000", L"%d %x", static_cast<int>(0x80000000U), 0x80000000U},
        {L"-9223372036854775808", L"%I64d", static_cast<LONGLONG>(1ULL << 63)},
        {L"18446744073709551615 ffffffffff", L"%I64u %llx", ~0ULL, 0xFFFFFFFFFFULL},
        {L"-2 4294967294 fffffffe", L"%ld %lu %lx", -2, -2, -2},
        {L"4464 1 ffff", L"%hd %hu %hx", 70000, 65537, -1},
        {L"wide narrow", L"%s %S", L"wide", "narrow"},
        {L"wide wide narrow narrow", L"%ls %lS %hs %hS", L"wide", L"wide", "narrow", "narrow"},
        {L"|  ab|ab  |ab|", L"|%4s|%-4S|%.2s|", L"ab", "ab", L"abc"},
        {L"ab a", L"%.2S %.1S", unterminated, unterminated},
        {L"(null) (null)", L"%s %S", no_text, no_text},
        {L"AA\u3042 \u00E9", L"%c%C%c %C", L'A', 'A', L'\u3042', '\xE9'},
        {L"|  x|x  |", L"|%3c|%-3c|", L'x', L'x'},
        {L"0000000012ABCDEF", L"%p", reinterpret_cast<void*>(0x12ABCDEF)},
        {L"%q %y 5", L"%q %y %d", 5},
        {L"cut %", L"cut %"},
        {L"cut %-5", L"cut %-5"},
        {L"KESTA\tCOM_Init, CreateFile() fail!!!, ErrorCode(55), SerialPort.cpp(42)\r\n",
         L"%s\t%S, CreateFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", L"KESTA", "COM_Init", 55,
         "SerialPort.cpp", 42},
        {long_text.substr(0, 1023).c_str(), L"%s", long_text.c_str()},
    };
    for (const Printed& row : rows)
        EXPECT_EQ(row.buffer, row.expected) << testing::PrintToString(row.format);
}

}  // namespace
}  // namespace tests
