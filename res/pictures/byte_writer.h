#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace pictures {

// Appends little-endian numbers.
class ByteWriter {
  public:
    void Byte(unsigned value) { bytes_.push_back(static_cast<std::uint8_t>(value)); }

    void Word(unsigned value) {
        Byte(value & 0xFF);
        Byte(value >> 8);
    }

    void Dword(std::size_t value) {
        Word(value & 0xFFFF);
        Word(static_cast<unsigned>(value >> 16));
    }

    void PadTo(std::size_t multiple) {
        while (bytes_.size() % multiple != 0)
            Byte(0);
    }

    void Append(const std::vector<std::uint8_t>& bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    std::size_t size() const { return bytes_.size(); }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

  private:
    std::vector<std::uint8_t> bytes_;
};

}  // namespace pictures
