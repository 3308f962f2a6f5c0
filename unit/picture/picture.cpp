#include "unit/picture/picture.h"

#include <png.h>

#include <cerrno>
#include <cstring>

namespace unit {

bool WritePng(const Picture& picture, const std::string& path, std::string& problem) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels)
        for (const unsigned shift : {16U, 8U, 0U})
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    if (png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) != 0)
        return true;
    problem = path + ": " + (errno != 0 ? std::strerror(errno) : image.message);
    return false;
}

}  // namespace unit
