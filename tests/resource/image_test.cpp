#include "platform/resource/image.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "platform/resource/module.h"
#include "resource_bytes.h"

namespace {

namespace resource = platform::resource;
using namespace tests;
using Pixels = std::vector<std::uint32_t>;

void SetModule(const Bytes& file) {
    std::string problem;
    ASSERT_TRUE(resource::SetModule(file, L"\\program.exe", problem)) << problem;
    SetLastError(ERROR_SUCCESS);
}

struct Dib {
    const char* what;
    Bytes bytes;
    Pixels pixels;
    DWORD error = ERROR_SUCCESS;
};

Bytes Join(const Bytes& header, const ByteList& rest) {
    return ByteList().Add(header).Add(rest.bytes()).bytes();
}

// Two by two pixels: the lower row stands first.
std::vector<Dib> Dibs() {
    const Pixels red_green_blue_white = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
    const ByteList colours =
        ByteList().Dword(0x00FF0000).Dword(0x0000FF00).Dword(0x000000FF).Dword(0x00FFFFFF);
    constexpr auto kTopDown = static_cast<std::uint32_t>(-2);
    ByteList bits1 = ByteList().Dword(0x00102030).Dword(0x00A0B0C0);
    ByteList bits8 = colours;
    ByteList bits4 = colours;
    return {
        {"1 bit",
         Join(DibHeader(2, 2, 1), bits1.Dword(0x40).Dword(0x80)),
         {0xA0B0C0, 0x102030, 0x102030, 0xA0B0C0}},
        {"4 bits, 4 colours", Join(DibHeader(2, 2, 4, 0, 4), bits4.Dword(0x23).Dword(0x01)),
         red_green_blue_white},
        {"8 bits, an index without a colour",
         Join(DibHeader(2, 2, 8, 0, 4), bits8.Dword(0x0902).Dword(0x0100)),
         {0xFF0000, 0x00FF00, 0x0000FF, 0x000000}},
        {"16 bits", Join(DibHeader(2, 2, 16), ByteList().Dword(0x7FFF001F).Dword(0x03E07C00)),
         red_green_blue_white},
        {"24 bits",
         Join(DibHeader(2, 2, 24),
              ByteList().Dword(0xFF0000FF).Dword(0x0000FFFF).Dword(0x00FF0000).Dword(0x000000FF)),
         {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF}},
        {"32 bits from the top, the highest byte unused",
         Join(DibHeader(2, kTopDown, 32),
              ByteList().Dword(0x77FF0000).Dword(0x0000FF00).Dword(0x000000FF).Dword(0x99FFFFFF)),
         red_green_blue_white},
        {"run-length encoded",
         Join(DibHeader(2, 2, 8, 1), ByteList().Dword(0)),
         {},
         ERROR_NOT_SUPPORTED},
        {"2 bits", Join(DibHeader(2, 2, 2), ByteList().Dword(0)), {}, ERROR_NOT_SUPPORTED},
        {"no width", Join(DibHeader(0, 2, 24), ByteList().Dword(0)), {}, ERROR_INVALID_DATA},
        {"no height", Join(DibHeader(2, 0, 24), ByteList().Dword(0)), {}, ERROR_INVALID_DATA},
        {"the least height",
         Join(DibHeader(2, 0x80000000, 24), ByteList().Dword(0)),
         {},
         ERROR_INVALID_DATA},
        {"far too wide",
         Join(DibHeader(0x7FFFFFFF, 2, 24), ByteList().Dword(0)),
         {},
         ERROR_INVALID_DATA},
        {"one pixel short", Join(DibHeader(1, 2, 32), ByteList().Dword(0)), {}, ERROR_INVALID_DATA},
        {"more colours than bytes",
         Join(DibHeader(1, 1, 24, 0, 0xFFFFFFFF), ByteList().Dword(0)),
         {},
         ERROR_INVALID_DATA},
    };
}

TEST(Image, Bitmaps) {
    for (const Dib& dib : Dibs()) {
        SCOPED_TRACE(dib.what);
        const Bytes file = ResFile({ResEntry(2, 1, dib.bytes)});
        SetModule(file);
        const auto image = resource::DecodeBitmap(MAKEINTRESOURCEW(1));
        ASSERT_EQ(image.has_value(), dib.error == ERROR_SUCCESS);
        EXPECT_EQ(GetLastError(), dib.error);
        if (!image)
            continue;
        EXPECT_EQ(image->width, 2);
        EXPECT_EQ(image->height, 2);
        EXPECT_EQ(image->pixels, dib.pixels);
    }
}

// A group of a square of 2 with 1 bit and the same with 32 bits.
Bytes TwoIcons(std::uint32_t opacity) {
    const Bytes plain = Join(DibHeader(2, 4, 1), ByteList()
                                                     .Dword(0x00111111)
                                                     .Dword(0x00222222)
                                                     .Dword(0x40)
                                                     .Dword(0x80)
                                                     .Dword(0xC0)
                                                     .Dword(0x40));
    const std::uint32_t pixel = opacity << 24 | 0x010203;
    const Bytes deep = Join(
        DibHeader(2, 4, 32),
        ByteList().Dword(pixel).Dword(pixel).Dword(pixel).Dword(pixel).Dword(0x40).Dword(0x80));
    ByteList group;
    group.Word(0).Word(1).Word(2);
    group.Byte(2).Byte(2).Byte(2).Byte(0).Word(1).Word(1).Dword(64).Word(7);
    group.Byte(2).Byte(2).Byte(0).Byte(0).Word(1).Word(32).Dword(64).Word(8);
    return ResFile({ResEntry(3, 7, plain), ResEntry(3, 8, deep), ResEntry(14, 1, group.bytes())});
}

TEST(Image, IconTakesItsOpacityFromItsPixelsElseFromItsMask) {
    const Bytes with_opacity = TwoIcons(0x80);
    SetModule(with_opacity);
    const auto decode = [] {
        return resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).value_or(resource::DecodedImage{});
    };
    EXPECT_EQ(decode().bits_per_pixel, 32);
    EXPECT_EQ(decode().pixels, Pixels(4, 0x80010203));

    const Bytes without = TwoIcons(0);
    SetModule(without);
    EXPECT_EQ(decode().pixels, (Pixels{0x00010203, 0xFF010203, 0xFF010203, 0x00010203}));

    resource::Hide(RT_ICON, MAKEINTRESOURCEW(8));
    EXPECT_FALSE(resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
}

}  // namespace
