#include "platform/resource/dib.h"

#include <algorithm>
#include <array>

#include "platform/resource/byte_reader.h"

namespace platform::resource {

namespace {

// More than any screen has; keeps the arithmetic within bounds.
constexpr LONG kMaxSide = 1 << 15;
constexpr std::uint32_t kOpaque = 0xFF000000;
constexpr std::uint32_t kColourBits = 0x00FFFFFF;

struct Head {
    LONG width = 0;
    LONG height = 0;
    WORD bits_per_pixel = 0;
    std::vector<std::uint32_t> colours;
};

std::nullopt_t Fail(DWORD error) {
    SetLastError(error);
    return std::nullopt;
}

std::optional<Head> ReadHead(ByteReader& reader) {
    Head head;
    const DWORD size = reader.Dword();
    head.width = static_cast<LONG>(reader.Dword());
    head.height = static_cast<LONG>(reader.Dword());
    const WORD planes = reader.Word();
    head.bits_per_pixel = reader.Word();
    const DWORD compression = reader.Dword();
    reader.Bytes(sizeof(DWORD) + 2 * sizeof(LONG));
    const DWORD colours_used = reader.Dword();
    reader.Bytes(sizeof(DWORD));
    if (!reader || size < sizeof(BITMAPINFOHEADER) || planes != 1)
        return Fail(ERROR_INVALID_DATA);
    if (head.width <= 0 || head.width > kMaxSide || head.height == 0 || head.height > kMaxSide ||
        head.height < -kMaxSide)
        return Fail(ERROR_INVALID_DATA);
    constexpr std::array kKnownDepths = {1, 4, 8, 16, 24, 32};
    if (compression != BI_RGB ||
        std::ranges::find(kKnownDepths, head.bits_per_pixel) == kKnownDepths.end())
        return Fail(ERROR_NOT_SUPPORTED);

    reader.Bytes(size - sizeof(BITMAPINFOHEADER));
    const DWORD most = head.bits_per_pixel <= 8 ? DWORD{1} << head.bits_per_pixel : 0;
    const DWORD count =
        most != 0 && (colours_used == 0 || colours_used > most) ? most : colours_used;
    if (count > reader.left() / sizeof(RGBQUAD))
        return Fail(ERROR_INVALID_DATA);
    for (DWORD index = 0; index < count; ++index)
        head.colours.push_back(reader.Dword() & kColourBits);
    return head;
}

// Uncompressed rows, the lowest first, each padded to whole 32-bit words.
class Rows {
  public:
    Rows(std::span<const std::byte> bytes, LONG width, LONG height, WORD bits_per_pixel)
        : bytes_(bytes),
          stride_(Stride(width, bits_per_pixel)),
          last_(height - 1),
          bits_per_pixel_(bits_per_pixel) {}

    static std::size_t Stride(LONG width, WORD bits_per_pixel) {
        return (static_cast<std::size_t>(width) * bits_per_pixel + 31) / 32 * 4;
    }

    // The bits of a pixel, counted from the top left.
    std::uint32_t Value(LONG x, LONG y) const {
        const std::size_t bit = static_cast<std::size_t>(x) * bits_per_pixel_;
        const std::size_t start = static_cast<std::size_t>(last_ - y) * stride_ + bit / 8;
        if (bits_per_pixel_ < 8) {
            // The leftmost pixel is in the highest bits.
            const std::size_t shift = 8 - bits_per_pixel_ - bit % 8;
            return At(start) >> shift & ((1U << bits_per_pixel_) - 1);
        }
        std::uint32_t value = 0;
        for (std::size_t index = 0; index < bits_per_pixel_ / 8; ++index)
            value |= At(start + index) << (8 * index);
        return value;
    }

  private:
    std::uint32_t At(std::size_t index) const {
        return std::to_integer<std::uint32_t>(bytes_[index]);
    }

    std::span<const std::byte> bytes_;
    std::size_t stride_;
    LONG last_;
    WORD bits_per_pixel_;
};

// 5 bits a colour.
std::uint32_t WidenColour(std::uint32_t value) {
    std::uint32_t wide = 0;
    for (const unsigned index : {2U, 1U, 0U}) {
        const std::uint32_t channel = value >> (5 * index) & 0x1F;
        wide = wide << 8 | (channel << 3 | channel >> 2);
    }
    return wide;
}

std::uint32_t Colour(const Head& head, std::uint32_t value) {
    if (head.bits_per_pixel <= 8)
        return value < head.colours.size() ? head.colours[value] : 0;
    return head.bits_per_pixel == 16 ? WidenColour(value) : value;
}

// Reads `height` rows; a 32-bit pixel keeps its highest byte.
std::optional<DecodedImage> ReadPixels(ByteReader& reader, const Head& head, LONG height) {
    const std::size_t size =
        Rows::Stride(head.width, head.bits_per_pixel) * static_cast<std::size_t>(height);
    const Rows rows(reader.Bytes(size), head.width, height, head.bits_per_pixel);
    if (!reader)
        return Fail(ERROR_INVALID_DATA);
    DecodedImage image{head.width, height, head.bits_per_pixel, {}};
    image.pixels.reserve(static_cast<std::size_t>(head.width) * static_cast<std::size_t>(height));
    for (LONG y = 0; y < height; ++y)
        for (LONG x = 0; x < head.width; ++x)
            image.pixels.push_back(Colour(head, rows.Value(x, y)));
    return image;
}

}  // namespace

std::optional<DecodedImage> DecodeDib(std::span<const std::byte> bytes) {
    ByteReader reader(bytes);
    const auto head = ReadHead(reader);
    if (!head)
        return std::nullopt;
    auto image = ReadPixels(reader, *head, std::abs(head->height));
    if (!image)
        return std::nullopt;
    for (std::uint32_t& pixel : image->pixels)
        pixel &= kColourBits;
    // A negative height says that the rows come from the top.
    if (head->height < 0) {
        for (auto top = image->pixels.begin(), bottom = image->pixels.end();
             bottom - top > image->width; top += image->width) {
            bottom -= image->width;
            std::swap_ranges(top, top + image->width, bottom);
        }
    }
    return image;
}

std::optional<DecodedImage> DecodeIconDib(std::span<const std::byte> bytes) {
    ByteReader reader(bytes);
    const auto head = ReadHead(reader);
    if (!head)
        return std::nullopt;
    if (head->height < 2 || head->height % 2 != 0)
        return Fail(ERROR_INVALID_DATA);
    const LONG height = head->height / 2;
    auto image = ReadPixels(reader, *head, height);
    if (!image)
        return std::nullopt;
    // With 32 bits the pixels may carry their own opacity; then the mask says nothing.
    if (head->bits_per_pixel == 32 &&
        std::ranges::any_of(image->pixels, [](std::uint32_t pixel) { return pixel >> 24 != 0; }))
        return image;
    Head mask_head{head->width, height, 1, {kOpaque, 0}};
    const auto mask = ReadPixels(reader, mask_head, height);
    if (!mask)
        return std::nullopt;
    for (std::size_t index = 0; index < image->pixels.size(); ++index)
        image->pixels[index] = (image->pixels[index] & kColourBits) | mask->pixels[index];
    return image;
}

}  // namespace platform::resource
