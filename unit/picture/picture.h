#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace unit {

// A picture of a screen or a camera: pixels 0x00RRGGBB, rows from top to bottom.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    // A pixel's index in `pixels`.
    std::size_t Offset(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
    std::uint32_t At(int x, int y) const { return pixels[Offset(x, y)]; }
    bool operator==(const Picture&) const = default;
};

// The bytes of a PNG with 8 bits a channel; empty, with one line in `problem`, when that fails.
std::string EncodePng(const Picture& picture, std::string& problem);

// Writes a PNG with 8 bits a channel. False, with one line in `problem`, when that fails.
bool WritePng(const Picture& picture, const std::string& path, std::string& problem);

// Reads a PNG of any kind; transparent pixels are mixed with black. Empty, with one line in
// `problem`, when that fails.
std::optional<Picture> ReadPng(const std::string& path, std::string& problem);

// How two pictures differ.
struct PictureDifference {
    // "14 pixels differ, from 120,33 to 131,34", or how the sizes differ.
    std::string text;
    // The expected picture in dark grey; each pixel that differs is bright red.
    Picture picture;
};

// Empty when all pixels are equal.
std::optional<PictureDifference> ComparePictures(const Picture& actual, const Picture& expected);

}  // namespace unit
