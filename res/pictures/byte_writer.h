#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace pictures {

// Appends little-endian numbers.
class ByteWriter {
  public:
    void Byte(unsigned value) { m_aBytes.push_back(static_cast<std::uint8_t>(value)); }

    void Word(unsigned value) {
        Byte(value & 0xFF);
        Byte(value >> 8);
    }

    void Dword(std::size_t value) {
        Word(value & 0xFFFF);
        Word(static_cast<unsigned>(value >> 16));
    }

    void PadTo(std::size_t multiple) {
        while (m_aBytes.size() % multiple != 0)
            Byte(0);
    }

    void Append(const std::vector<std::uint8_t>& bytes) {
        m_aBytes.insert(m_aBytes.end(), bytes.begin(), bytes.end());
    }

    std::size_t size() const { return m_aBytes.size(); }
    std::vector<std::uint8_t> Take() { return std::move(m_aBytes); }

  private:
    std::vector<std::uint8_t> m_aBytes;
};

}  // namespace pictures
