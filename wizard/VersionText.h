#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>

// A version of up to seven narrow characters. Any thread may store, clear or load it. The text is
// one atomic word, so that a reader never sees a mixture of two texts.
class CVersionText {
  public:
    static constexpr std::size_t kLength = 7;
    // Always ends in a zero byte.
    using Characters = std::array<char, kLength + 1>;

    // Reads exactly kLength characters.
    void Store(const char* characters) {
        std::uint64_t packed = 0;
        std::memcpy(&packed, characters, kLength);
        m_nPacked.store(packed);
    }

    void Clear() { m_nPacked.store(0); }

    Characters Load() const {
        const std::uint64_t packed = m_nPacked.load();
        Characters characters{};
        std::memcpy(characters.data(), &packed, kLength);
        return characters;
    }

  private:
    std::atomic<std::uint64_t> m_nPacked{0};
};

static_assert(sizeof(CVersionText::Characters) == sizeof(std::uint64_t));

// A version counts as known when its second or its fifth character, the dots of "0.01.00", is
// there.
inline bool IsVersionKnown(const CVersionText::Characters& version) {
    return version[1] != 0 || version[4] != 0;
}
