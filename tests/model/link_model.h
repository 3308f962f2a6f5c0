#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The reference model of the link's receiving half. It shares nothing with the program: it looks
// for whole frames in the bytes, where the program takes one byte after the other.
namespace tests::model {

// Formats as printf does, up to 200 characters.
template <typename... Values>
std::string Text(const char* format, Values... values) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

using Bytes = std::vector<std::uint8_t>;

struct Report {
    std::uint8_t type = 0;
    unsigned command = 0;
    Bytes payload;

    // 0 past the end, as in the program's record of a frame.
    std::uint8_t byte(std::size_t index) const {
        return index < payload.size() ? payload[index] : 0;
    }
    bool query() const { return (command & 0x8000) != 0; }
    bool operator==(const Report&) const = default;
};

// The bytes on the wire of a frame of the DVR.
Bytes Frame(std::uint8_t type, unsigned command, std::span<const std::uint8_t> payload);

// Finds the frames in a stream. A frame begins with the first sync pair after the previous frame,
// ends where its length says, and counts when its sum is right; a length beyond the maximum drops
// the header alone.
class FrameFinder {
  public:
    // Returns the frame that this byte ends.
    std::optional<Report> Add(std::uint8_t byte);

  private:
    Bytes pending_;  // empty, or the possible beginning of a frame
};

// The lines that the link's handlers log for a report; `has_frame`: there is a main frame to report
// to.
std::vector<std::string> HandlerLines(const Report& report, bool has_frame);
// The debug output for all reports in the bytes, without a main frame.
std::string HandlerLog(std::span<const std::uint8_t> bytes);

}  // namespace tests::model
