#include "unit/picture/picture.h"

#include <png.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace unit {
namespace {

// Of a picture that is read: far more than a screen, and no few bytes make it gigabytes.
constexpr png_uint_32 kLongestSide = 4096;

}  // namespace

bool WritePng(const Picture& picture, const std::string& path, std::string& problem) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const std::uint32_t pixel : picture.pixels)
        for (const unsigned shift : {16U, 8U, 0U})
            bytes.push_back(static_cast<std::uint8_t>(pixel >> shift));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    errno = 0;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    // Whoever waits for the file finds it whole or not at all, whoever else writes it too.
    const std::string unfinished = path + "." + std::to_string(getpid()) + ".part";
    if (png_image_write_to_file(&image, unfinished.c_str(), 0, bytes.data(), 0, nullptr) != 0 &&
        std::rename(unfinished.c_str(), path.c_str()) == 0)
        return true;
    problem = path + ": " + (errno != 0 ? std::strerror(errno) : image.message);
    std::remove(unfinished.c_str());
    return false;
}

std::optional<Picture> ReadPng(const std::string& path, std::string& problem) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    errno = 0;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) {
        problem = path + ": " + (errno != 0 ? std::strerror(errno) : image.message);
        return std::nullopt;
    }
    if (std::max(image.width, image.height) > kLongestSide) {
        problem = path + ": the picture is " + std::to_string(image.width) + " x " +
                  std::to_string(image.height) + "; at most " + std::to_string(kLongestSide) +
                  " x " + std::to_string(kLongestSide) + " are allowed";
        png_image_free(&image);
        return std::nullopt;
    }
    image.format = PNG_FORMAT_RGB;
    std::vector<std::uint8_t> bytes(PNG_IMAGE_SIZE(image));
    const png_color black{};
    if (png_image_finish_read(&image, &black, bytes.data(), 0, nullptr) == 0) {
        problem = path + ": " + image.message;
        png_image_free(&image);
        return std::nullopt;
    }
    Picture picture{static_cast<int>(image.width), static_cast<int>(image.height), {}};
    picture.pixels.reserve(bytes.size() / 3);
    for (std::size_t at = 0; at < bytes.size(); at += 3)
        picture.pixels.push_back(static_cast<std::uint32_t>(bytes[at] << 16) |
                                 static_cast<std::uint32_t>(bytes[at + 1] << 8) | bytes[at + 2]);
    return picture;
}

}  // namespace unit
