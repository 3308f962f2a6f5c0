#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "platform/resource/module.h"
#include "tests/support/platform_test.h"

namespace tests {

namespace resource = platform::resource;
using Bytes = std::vector<std::byte>;

inline constexpr wchar_t kProgramPath[] = L"\\Tolvane\\Tolvane.exe";

inline void UseModule(std::span<const std::byte> file) {
    std::string problem;
    ASSERT_TRUE(resource::SetModule(file, kProgramPath, problem)) << problem;
}

// Builds little-endian bytes field by field.
class ByteList {
  public:
    ByteList& Byte(unsigned value) {
        bytes_.push_back(static_cast<std::byte>(value));
        return *this;
    }
    ByteList& Word(unsigned value) { return Byte(value & 0xFF).Byte(value >> 8 & 0xFF); }
    ByteList& Words(std::initializer_list<unsigned> values) {
        for (const unsigned value : values)
            Word(value);
        return *this;
    }
    ByteList& Dwords(std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values)
            Word(value & 0xFFFF).Word(value >> 16);
        return *this;
    }
    ByteList& Text(std::u16string_view text) {
        for (const char16_t unit : text)
            Word(unit);
        return Word(0);
    }
    ByteList& Align() {
        while (bytes_.size() % 4 != 0)
            Byte(0);
        return *this;
    }
    ByteList& Add(const Bytes& bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    operator const Bytes&() const { return bytes_; }

  private:
    Bytes bytes_;
};

// One entry of a compiled resource file, padded; type and name are numbers.
inline Bytes ResEntry(unsigned type, unsigned name, const Bytes& data) {
    ByteList entry;
    entry.Dwords({static_cast<std::uint32_t>(data.size()), 32});
    entry.Words({0xFFFF, type, 0xFFFF, name, 0, 0, 0x30, 0x409, 0, 0, 0, 0});
    return entry.Add(data).Align();
}

inline Bytes ResFile(const std::vector<Bytes>& entries) {
    ByteList file;
    file.Add(ResEntry(0, 0, {}));
    for (const Bytes& entry : entries)
        file.Add(entry);
    return file;
}

// A BITMAPINFOHEADER; colours and bits follow it.
inline ByteList Dib(std::uint32_t width, std::uint32_t height, unsigned bits_per_pixel,
                    std::uint32_t compression = 0, std::uint32_t colours = 0) {
    return ByteList()
        .Dwords({40, width, height})
        .Words({1, bits_per_pixel})
        .Dwords({compression, 0, 0, 0, colours, 0});
}

}  // namespace tests
