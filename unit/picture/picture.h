#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace unit {

// What a person sees: pixels 0x00RRGGBB, rows top-down.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    // Where a pixel is among the pixels.
    std::size_t Offset(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x);
    }
    std::uint32_t At(int x, int y) const { return pixels[Offset(x, y)]; }
    bool operator==(const Picture&) const = default;
};

// Writes a PNG, 8 bits a channel. False with one line in `problem` when it could not.
bool WritePng(const Picture& picture, const std::string& path, std::string& problem);

// Reads a PNG of any kind, on black where it is transparent. Empty with one line in `problem` when
// it could not.
std::optional<Picture> ReadPng(const std::string& path, std::string& problem);

}  // namespace unit
