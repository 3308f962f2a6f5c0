#include "unit/picture/picture.h"

#include <png.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace unit {
namespace {

// The limit for a picture that is read guards against decompression bombs.
constexpr png_uint_32 kLongestSide = 4096;

constexpr std::uint32_t kDifferentPixel = 0xFF2020;
constexpr std::uint32_t kDarkening = 3;

std::uint32_t DarkGrey(std::uint32_t pixel) {
    const std::uint32_t sum = (pixel >> 16 & 0xFF) + (pixel >> 8 & 0xFF) + (pixel & 0xFF);
    return sum / 3 / kDarkening * 0x010101;
}

std::string SizeText(const Picture& picture) {
    return std::to_string(picture.width) + " x " + std::to_string(picture.height);
}

}  // namespace

std::string EncodePng(const Picture& picture, std::string& problem) {
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
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string png(size, '\0');
    if (png_image_write_to_memory(&image, png.data(), &size, 0, bytes.data(), 0, nullptr) == 0) {
        problem = image.message;
        return {};
    }
    png.resize(size);
    return png;
}

bool WritePng(const Picture& picture, const std::string& path, std::string& problem) {
    const std::string png = EncodePng(picture, problem);
    if (png.empty()) {
        problem = path + ": " + problem;
        return false;
    }
    // Written under another name first: readers find the whole file or none, and two writers do not
    // mix.
    const std::string unfinished = path + "." + std::to_string(getpid()) + ".part";
    errno = 0;
    std::ofstream stream(unfinished, std::ios::binary);
    stream << png;
    stream.close();
    if (stream && std::rename(unfinished.c_str(), path.c_str()) == 0)
        return true;
    problem = path + ": " + std::strerror(errno);
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

std::optional<PictureDifference> ComparePictures(const Picture& actual, const Picture& expected) {
    if (actual.width != expected.width || actual.height != expected.height)
        return PictureDifference{
            "it is " + SizeText(actual) + " pixels, expected " + SizeText(expected), expected};
    if (actual == expected)
        return std::nullopt;
    PictureDifference difference{{}, expected};
    int count = 0;
    int left = actual.width, top = actual.height, right = 0, bottom = 0;
    for (int y = 0; y < actual.height; ++y) {
        for (int x = 0; x < actual.width; ++x) {
            std::uint32_t& pixel = difference.picture.pixels[actual.Offset(x, y)];
            if (actual.At(x, y) == expected.At(x, y)) {
                pixel = DarkGrey(pixel);
                continue;
            }
            pixel = kDifferentPixel;
            ++count;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x);
            bottom = std::max(bottom, y);
        }
    }
    const auto place = [](int x, int y) { return std::to_string(x) + "," + std::to_string(y); };
    difference.text = std::to_string(count) + (count == 1 ? " pixel differs" : " pixels differ") +
                      ", from " + place(left, top) + " to " + place(right, bottom);
    return difference;
}

}  // namespace unit
