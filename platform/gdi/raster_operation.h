#pragma once

#include <windows.h>

#include <cstdint>

namespace platform::gdi {

// A ternary raster operation of the API. Bits 16 to 23 of its code are its truth table: bit
// 4 * pattern + 2 * source + destination.
class RasterOperation {
  public:
    explicit constexpr RasterOperation(DWORD code) : table_((code >> 16) & 0xFF) {}

    constexpr bool UsesPattern() const { return (((table_ >> 4) ^ table_) & 0x0F) != 0; }
    constexpr bool UsesSource() const { return (((table_ >> 2) ^ table_) & 0x33) != 0; }
    constexpr bool UsesDestination() const { return (((table_ >> 1) ^ table_) & 0x55) != 0; }

    constexpr std::uint32_t Combine(std::uint32_t pattern, std::uint32_t source,
                                    std::uint32_t destination) const {
        std::uint32_t result = 0;
        for (unsigned bit = 0; bit < 8; ++bit)
            if ((table_ >> bit) & 1)
                result |= ((bit & 4) ? pattern : ~pattern) & ((bit & 2) ? source : ~source) &
                          ((bit & 1) ? destination : ~destination);
        return result & 0xFFFFFF;
    }

  private:
    std::uint32_t table_;
};

}  // namespace platform::gdi
