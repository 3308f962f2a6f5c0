#include "platform/resource/image.h"

#include "res/program_resources.h"
#include "res/resource.h"
#include "tests/resource/resource_bytes.h"

namespace tests {
namespace {

using Pixels = std::vector<std::uint32_t>;

// Two by two pixels; the lower row comes first.
TEST(Image, Bitmaps) {
    const Pixels rgbw = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
    constexpr auto kTopDown = static_cast<std::uint32_t>(-2);
    const ByteList colours = ByteList().Dwords({0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});
    const ByteList none = ByteList().Dwords({0});
    // clang-format off
    const struct {
        const char* what;
        Bytes bytes;
        Pixels pixels;
        DWORD error = ERROR_SUCCESS;
    } cases[] = {
        {"1 bit", Dib(2, 2, 1).Dwords({0x102030, 0xA0B0C0, 0x40, 0x80}), {0xA0B0C0, 0x102030, 0x102030, 0xA0B0C0}},
        {"4 bits, 4 colours", Dib(2, 2, 4, 0, 4).Add(colours).Dwords({0x23, 0x01}), rgbw},
        {"8 bits, an index without a colour", Dib(2, 2, 8, 0, 4).Add(colours).Dwords({0x0902, 0x0100}), {0xFF0000, 0x00FF00, 0x0000FF, 0x000000}},
        {"16 bits", Dib(2, 2, 16).Dwords({0x7FFF001F, 0x03E07C00}), rgbw},
        {"24 bits", Dib(2, 2, 24).Dwords({0xFF0000FF, 0x0000FFFF, 0x00FF0000, 0x000000FF}), rgbw},
        {"32 bits from the top, the highest byte unused", Dib(2, kTopDown, 32).Dwords({0x77FF0000, 0x0000FF00, 0x000000FF, 0x99FFFFFF}), rgbw},
        {"run-length encoded", Dib(2, 2, 8, 1).Add(none), {}, ERROR_NOT_SUPPORTED},
        {"2 bits", Dib(2, 2, 2).Add(none), {}, ERROR_NOT_SUPPORTED},
        {"width 0", Dib(0, 2, 24).Add(none), {}, ERROR_INVALID_DATA},
        {"height 0", Dib(2, 0, 24).Add(none), {}, ERROR_INVALID_DATA},
        {"the most negative height", Dib(2, 0x80000000, 24).Add(none), {}, ERROR_INVALID_DATA},
        {"far too wide", Dib(0x7FFFFFFF, 2, 24).Add(none), {}, ERROR_INVALID_DATA},
        {"one pixel short", Dib(1, 2, 32).Add(none), {}, ERROR_INVALID_DATA},
        {"more colours than bytes", Dib(1, 1, 24, 0, 0xFFFFFFFF).Add(none), {}, ERROR_INVALID_DATA},
    };
    // clang-format on
    for (const auto& dib : cases) {
        SCOPED_TRACE(dib.what);
        const Bytes file = ResFile({ResEntry(2, 1, dib.bytes)});
        UseModule(file);
        SetLastError(ERROR_SUCCESS);
        const auto image = resource::DecodeBitmap(MAKEINTRESOURCEW(1));
        ASSERT_EQ(image.has_value(), dib.error == ERROR_SUCCESS);
        EXPECT_EQ(GetLastError(), dib.error);
        EXPECT_TRUE(!image || (image->width == 2 && image->height == 2));
        EXPECT_EQ(image.value_or(resource::DecodedImage{}).pixels, dib.pixels);
    }
}

// A group of a square of 2 with 1 bit and the same with 32 bits.
Bytes TwoIcons(std::uint32_t pixel) {
    const auto plain = Dib(2, 4, 1).Dwords({0x111111, 0x222222, 0x40, 0x80, 0xC0, 0x40});
    const auto deep = Dib(2, 4, 32).Dwords({pixel, pixel, pixel, pixel, 0x40, 0x80});
    const auto group =
        ByteList().Words({0, 1, 2, 0x0202, 2, 1, 1, 64, 0, 7, 0x0202, 0, 1, 32, 64, 0, 8});
    return ResFile({ResEntry(3, 7, plain), ResEntry(3, 8, deep), ResEntry(14, 1, group)});
}

TEST(Image, IconOpacityComesFromThePixelsOrElseFromTheMask) {
    const std::pair<std::uint32_t, Pixels> cases[] = {
        {0x80010203, Pixels(4, 0x80010203)},
        {0x00010203, {0x00010203, 0xFF010203, 0xFF010203, 0x00010203}}};
    for (const auto& [pixel, expected] : cases) {
        const Bytes file = TwoIcons(pixel);
        UseModule(file);
        const auto icon = resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2);
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->bits_per_pixel, 32);
        EXPECT_EQ(icon->pixels, expected);
        resource::Hide(RT_ICON, MAKEINTRESOURCEW(8));
        ExpectFails(ERROR_RESOURCE_NAME_NOT_FOUND,
                    [] { return resource::DecodeIcon(MAKEINTRESOURCEW(1), 2, 2).has_value(); });
    }
}

// The requested and the nearest size; size 0 means the first image.
TEST(Image, IconOfTheProgramIsTheNearestInSize) {
    UseModule(res::ProgramResources());
    for (const auto& [requested, size] : {std::pair(32, 32), {16, 16}, {20, 16}, {0, 32}}) {
        const auto icon =
            resource::DecodeIcon(MAKEINTRESOURCEW(IDR_MAINFRAME), requested, requested);
        EXPECT_TRUE(icon && icon->width == size && icon->height == size) << requested;
    }
}

}  // namespace
}  // namespace tests
