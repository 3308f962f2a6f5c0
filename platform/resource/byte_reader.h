#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace platform::resource {

// Reads little-endian numbers from bytes. Reading past their end gives 0 and makes the reader false
// permanently, so that a caller can check once at the end.
class ByteReader {
  public:
    explicit ByteReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    explicit operator bool() const { return whole_; }
    std::size_t position() const { return position_; }
    std::size_t left() const { return bytes_.size() - position_; }

    std::uint8_t Byte() { return static_cast<std::uint8_t>(Number(1)); }
    std::uint16_t Word() { return static_cast<std::uint16_t>(Number(2)); }
    std::uint32_t Dword() { return Number(4); }

    std::span<const std::byte> Bytes(std::size_t count) {
        if (count > left()) {
            whole_ = false;
            position_ = bytes_.size();
            return {};
        }
        position_ += count;
        return bytes_.subspan(position_ - count, count);
    }

    // UTF-16 units up to a terminator, which it consumes too.
    std::u16string Text() {
        std::u16string text;
        for (char16_t unit = Word(); unit != 0; unit = Word())
            text += unit;
        return text;
    }

    // Skips to a multiple of four, or to the end of the bytes if that comes first.
    void Align() { position_ = std::min((position_ + 3) & ~std::size_t{3}, bytes_.size()); }

  private:
    std::uint32_t Number(std::size_t size) {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const std::byte byte : Bytes(size)) {
            value |= std::to_integer<std::uint32_t>(byte) << shift;
            shift += 8;
        }
        return value;
    }

    std::span<const std::byte> bytes_;
    std::size_t position_ = 0;
    bool whole_ = true;
};

}  // namespace platform::resource
