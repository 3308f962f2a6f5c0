#include "res/pictures/image_files.h"

#include <array>
#include <fstream>

#include "res/pictures/byte_writer.h"

namespace pictures {

namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::size_t kInfoHeaderSize = 40;
constexpr unsigned kIconDirectoryEntrySize = 16;

// The icons' palette; transparent pixels have the first colour.
constexpr std::array<std::uint32_t, 16> kIconColours = {
    0x000000, 0x121212, 0x282726, 0x3E3D3C, 0x595756, 0x82807E, 0xB4B2B0, 0xFFFFFF,
    0x3C2B04, 0x6E4E08, 0xB8830C, 0xD09E28, 0xE8BA46, 0x142238, 0x26466E, 0x93A2B6,
};

constexpr unsigned Channel(std::uint32_t colour, int shift) {
    return (colour >> shift) & 0xFF;
}

void InfoHeader(ByteWriter& out, int width, int height, unsigned bits_per_pixel) {
    out.Dword(kInfoHeaderSize);
    out.Dword(static_cast<std::size_t>(width));
    out.Dword(static_cast<std::size_t>(height));
    out.Word(1);
    out.Word(bits_per_pixel);
    // Uncompressed; readers derive the sizes and counts.
    for (int field = 0; field < 6; ++field)
        out.Dword(0);
}

bool Transparent(std::uint32_t pixel) {
    return Channel(pixel, 24) < 0x80;
}

unsigned NearestIconColour(std::uint32_t pixel) {
    unsigned nearest = 0;
    int least = 3 * 256 * 256;
    for (unsigned index = 0; index < kIconColours.size(); ++index) {
        int distance = 0;
        for (const int shift : {0, 8, 16}) {
            const int difference = static_cast<int>(Channel(pixel, shift)) -
                                   static_cast<int>(Channel(kIconColours[index], shift));
            distance += difference * difference;
        }
        if (distance < least) {
            least = distance;
            nearest = index;
        }
    }
    return nearest;
}

Bytes EncodeIconImage(const Raster& image) {
    ByteWriter out;
    // The height includes the mask's rows.
    InfoHeader(out, image.width, 2 * image.height, 4);
    for (const std::uint32_t colour : kIconColours)
        out.Dword(colour);
    for (int y = image.height - 1; y >= 0; --y) {
        for (int x = 0; x < image.width; x += 2) {
            unsigned pair = 0;
            for (int step = 0; step < 2; ++step) {
                const std::uint32_t pixel = image.At(x + step, y);
                pair = pair << 4 | (Transparent(pixel) ? 0 : NearestIconColour(pixel));
            }
            out.Byte(pair);
        }
        out.PadTo(4);
    }
    for (int y = image.height - 1; y >= 0; --y) {
        for (int x = 0; x < image.width; x += 8) {
            unsigned bits = 0;
            for (int step = 0; step < 8; ++step)
                bits = bits << 1 | (Transparent(image.At(x + step, y)) ? 1U : 0U);
            out.Byte(bits);
        }
        out.PadTo(4);
    }
    return out.Take();
}

}  // namespace

Bytes EncodeBitmap(const Raster& picture) {
    ByteWriter pixels;
    for (int y = picture.height - 1; y >= 0; --y) {
        for (int x = 0; x < picture.width; ++x)
            for (const int shift : {0, 8, 16})
                pixels.Byte(Channel(picture.At(x, y), shift));
        pixels.PadTo(4);
    }
    ByteWriter out;
    out.Byte('B');
    out.Byte('M');
    out.Dword(kFileHeaderSize + kInfoHeaderSize + pixels.size());
    out.Dword(0);
    out.Dword(kFileHeaderSize + kInfoHeaderSize);
    InfoHeader(out, picture.width, picture.height, 24);
    out.Append(pixels.Take());
    return out.Take();
}

Bytes EncodeIcon(std::span<const Raster> images) {
    ByteWriter out;
    out.Word(0);
    out.Word(1);
    out.Word(static_cast<unsigned>(images.size()));
    std::size_t offset = out.size() + images.size() * kIconDirectoryEntrySize;
    std::vector<Bytes> encoded;
    for (const Raster& image : images) {
        encoded.push_back(EncodeIconImage(image));
        out.Byte(static_cast<unsigned>(image.width));
        out.Byte(static_cast<unsigned>(image.height));
        out.Byte(kIconColours.size());
        out.Byte(0);
        out.Word(1);
        out.Word(4);
        out.Dword(encoded.back().size());
        out.Dword(offset);
        offset += encoded.back().size();
    }
    for (const Bytes& bytes : encoded)
        out.Append(bytes);
    return out.Take();
}

bool WriteFile(const std::string& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file.good();
}

}  // namespace pictures
