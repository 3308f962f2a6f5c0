#include "unit/recording/line_burst.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "unit/events/hex_text.h"

namespace unit {

using std::chrono::microseconds;

namespace {

constexpr char kWire[] = "wire";

// Longer without a byte ends a burst, and so does this many bytes: a line must stay readable.
constexpr microseconds kLongestGap{2000};
constexpr std::size_t kMostBytes = 256;

// When the byte of that number, from 0, has passed on a line of 460800 baud, after the first one.
microseconds WireTime(std::size_t index) {
    constexpr std::size_t kBaudRate = 460'800;
    const auto passed = [](std::size_t bytes) {
        return (bytes * 10 * 1'000'000 + kBaudRate - 1) / kBaudRate;
    };
    return microseconds(passed(index + 1) - passed(1));
}

bool KeepsWirePace(const std::vector<LinePiece>& pieces) {
    for (std::size_t index = 0; index < pieces.size(); ++index)
        if (pieces[index].bytes.size() != 1 || pieces[index].after != WireTime(index))
            return false;
    return pieces.size() > 1;
}

// Two digits, as they are written.
std::optional<std::uint8_t> ReadByte(std::string_view word) {
    unsigned value = 0;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, value, 16);
    if (word.size() != 2 || error != std::errc() || rest != end)
        return std::nullopt;
    return static_cast<std::uint8_t>(value);
}

std::optional<microseconds> ReadGap(std::string_view word) {
    if (!word.starts_with('+'))
        return std::nullopt;
    word.remove_prefix(1);
    std::int32_t value = 0;
    const char* const end = word.data() + word.size();
    const auto [rest, error] = std::from_chars(word.data(), end, value);
    if (error != std::errc() || rest != end || value < 0)
        return std::nullopt;
    return microseconds(value);
}

}  // namespace

std::size_t LineBurst::size() const {
    std::size_t count = 0;
    for (const LinePiece& piece : pieces)
        count += piece.bytes.size();
    return count;
}

std::string BurstText(const LineBurst& burst) {
    const bool wire = KeepsWirePace(burst.pieces);
    std::string text = wire ? kWire : "";
    microseconds last{};
    for (const LinePiece& piece : burst.pieces) {
        if (!wire && piece.after != last)
            text += " +" + std::to_string((piece.after - last).count());
        last = piece.after;
        text += (text.empty() ? "" : " ") + HexText(piece.bytes);
    }
    return text;
}

std::optional<std::vector<LinePiece>> ReadPieces(std::span<const std::string> words,
                                                 std::string& problem) {
    std::vector<LinePiece> pieces;
    const bool wire = !words.empty() && words.front() == kWire;
    if (wire)
        words = words.subspan(1);
    microseconds after{};
    bool begins = true;
    for (const std::string& word : words) {
        const auto gap = wire ? std::nullopt : ReadGap(word);
        if (gap && !begins) {
            after += *gap;
            begins = true;
            continue;
        }
        const auto byte = ReadByte(word);
        if (!byte) {
            problem = "'" + word + "' is not allowed; allowed is a byte as two hexadecimal digits" +
                      (wire || begins ? "" : ", or + and the microseconds to the next byte");
            return std::nullopt;
        }
        if (wire)
            after = WireTime(pieces.size());
        if (begins || wire)
            pieces.push_back({after, {}});
        begins = false;
        pieces.back().bytes.push_back(*byte);
    }
    if (begins) {
        problem = "something is missing; allowed is a byte as two hexadecimal digits";
        return std::nullopt;
    }
    return pieces;
}

std::optional<BurstJoiner::Burst> BurstJoiner::Take(microseconds time, const LineBytes& bytes) {
    std::optional<Burst> ended;
    if (open_) {
        const microseconds last = open_->time + open_->burst.pieces.back().after;
        if (open_->burst.direction != bytes.direction || bytes.direction == Direction::kToDvr ||
            time - last > kLongestGap || open_->burst.size() + bytes.bytes.size() > kMostBytes)
            ended = End();
    }
    if (!open_)
        open_ = Burst{time, {bytes.direction, {}}};
    std::vector<LinePiece>& pieces = open_->burst.pieces;
    const microseconds after = time - open_->time;
    if (!pieces.empty() && pieces.back().after == after)
        pieces.back().bytes.insert(pieces.back().bytes.end(), bytes.bytes.begin(),
                                   bytes.bytes.end());
    else
        pieces.push_back({after, bytes.bytes});
    return ended;
}

std::optional<BurstJoiner::Burst> BurstJoiner::End() {
    return std::exchange(open_, std::nullopt);
}

}  // namespace unit
