// The unit's frame splitter and monitor, and the simulated DVR's decoder: every byte is kept,
// frames are found just as the program's parser finds them, and an entry has a limited size.
#include <algorithm>
#include <string>
#include <vector>

#include "control/protocol.h"
#include "dvrsim/frame_codec.h"
#include "fuzz/fuzz.h"
#include "unit/line/frame_monitor.h"

namespace {

using fuzz::Check;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongestEntry = 1024;

void Append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// Returns the frames among the bytes.
std::vector<Bytes> Split(const Bytes& bytes) {
    unit::FrameSplitter splitter;
    std::vector<Bytes> frames;
    Bytes all;
    for (const std::uint8_t byte : bytes)
        if (const auto segment = splitter.Take(byte)) {
            Append(all, segment->bytes);
            if (segment->kind == unit::Segment::Kind::kFrame)
                frames.push_back(segment->bytes);
        }
    Append(all, splitter.held());
    Check(all == bytes, "the splitter keeps every byte");
    return frames;
}

void Monitor(const Bytes& bytes, std::size_t chunk, const std::vector<Bytes>& frames) {
    unit::FrameMonitor monitor(unit::Direction::kToUnit);
    Bytes all;
    std::vector<Bytes> found;
    for (std::size_t at = 0; at < bytes.size(); at += chunk)
        for (const unit::LineEntry& entry :
             monitor.Take({}, std::span(bytes).subspan(at, std::min(chunk, bytes.size() - at)))) {
            Check(entry.bytes.size() <= kLongestEntry, "an entry has its limit");
            Check(control::IsPlainText(entry.Text()), "an entry is one line of text", entry.Text());
            Append(all, entry.bytes);
            if (entry.kind == unit::Segment::Kind::kFrame)
                found.push_back(entry.bytes);
        }
    Check(found == frames, "the monitor finds the splitter's frames");
    Check(std::ranges::equal(all, std::span(bytes).first(all.size())),
          "the monitor keeps every byte");
}

void Decode(const Bytes& bytes) {
    dvrsim::FrameDecoder decoder;
    auto from = bytes.begin();
    for (const std::uint8_t byte : bytes) {
        decoder.Take(byte);
        while (const auto frame = decoder.Next()) {
            const Bytes wire = dvrsim::EncodeFrame(static_cast<dvrsim::FrameType>(frame->type),
                                                   frame->code, frame->payload);
            const auto found = std::search(from, bytes.end(), wire.begin(), wire.end());
            Check(found != bytes.end(), "a decoded frame is in the input after the last one");
            from = found + static_cast<std::ptrdiff_t>(wire.size());
        }
    }
}

}  // namespace

void fuzz::Try(Input input) {
    const std::size_t chunk = std::max<std::size_t>(input.Byte(), 1);
    const Bytes bytes = input.Rest();
    Monitor(bytes, chunk, Split(bytes));
    Decode(bytes);
}
