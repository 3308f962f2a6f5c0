#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The receiving half of the link, told a second time for tests to compare with. It shares nothing
// with the program's: it looks at the bytes as they lie, not at one after the other.
namespace tests::model {

using Bytes = std::vector<std::uint8_t>;

struct Report {
    std::uint8_t type = 0;
    unsigned command = 0;
    Bytes payload;

    // 0 past the end, as the program's record of a frame has it.
    std::uint8_t byte(std::size_t index) const {
        return index < payload.size() ? payload[index] : 0;
    }
    bool query() const { return (command & 0x8000) != 0; }
    bool operator==(const Report&) const = default;
};

// What is on the wire for a frame of the DVR.
Bytes Frame(std::uint8_t type, unsigned command, std::span<const std::uint8_t> payload);

// Finds the frames in a stream. A frame begins with the first sync pair after the one before, is
// over where its length says, and counts when its sum is right; a length beyond any frame's drops
// the header alone.
class FrameFinder {
  public:
    // The frame that this byte ends.
    std::optional<Report> Add(std::uint8_t byte);

  private:
    Bytes pending_;  // empty, or what may be the beginning of a frame
};

// What the program writes to the debug output for a report, with its line ends, up to where the
// wizard is told; `told` is whether there is a main frame to tell.
std::string HandlerLog(const Report& report, bool told);
// The same for all reports in the bytes, while there is none.
std::string HandlerLog(std::span<const std::uint8_t> bytes);

}  // namespace tests::model
