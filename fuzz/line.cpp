// The unit's own ears on the serial line, and the simulated DVR's: any bytes are told without loss
// and just as the program's parser takes them, and memory never grows with them.
#include <algorithm>
#include <string>
#include <vector>

#include "control/protocol.h"
#include "dvrsim/frame_codec.h"
#include "fuzz/input.h"
#include "fuzz/promise.h"
#include "unit/line/frame_monitor.h"

namespace {

using fuzz::Promise;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kLongestEntry = 1024;

void Append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// Cuts the bytes; the frames among them.
std::vector<Bytes> Split(const Bytes& bytes) {
    unit::FrameSplitter splitter;
    std::vector<Bytes> frames;
    Bytes told;
    for (const std::uint8_t byte : bytes) {
        const auto segment = splitter.Take(byte);
        if (!segment)
            continue;
        Append(told, segment->bytes);
        if (segment->kind == unit::Segment::Kind::kFrame)
            frames.push_back(segment->bytes);
    }
    Append(told, splitter.held());
    Promise(told == bytes, "the splitter hides nothing");
    return frames;
}

void Monitor(const Bytes& bytes, std::size_t chunk, const std::vector<Bytes>& frames) {
    unit::FrameMonitor monitor(unit::Direction::kToUnit);
    std::vector<unit::LineEntry> entries;
    const auto keep = [&](std::vector<unit::LineEntry> more) {
        std::ranges::move(more, std::back_inserter(entries));
    };
    for (std::size_t at = 0; at < bytes.size(); at += chunk)
        keep(monitor.Take({}, std::span(bytes).subspan(at, std::min(chunk, bytes.size() - at))));
    Bytes told;
    std::vector<Bytes> found;
    for (const unit::LineEntry& entry : entries) {
        Promise(entry.bytes.size() <= kLongestEntry, "an entry has its limit");
        Promise(control::IsPlainText(entry.Text()), "an entry is one line of text", entry.Text());
        Append(told, entry.bytes);
        if (entry.kind == unit::Segment::Kind::kFrame)
            found.push_back(entry.bytes);
    }
    Promise(found == frames, "the monitor finds the splitter's frames");
    Promise(std::ranges::equal(told, std::span(bytes).first(told.size())),
            "the monitor hides nothing");
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
            Promise(found != bytes.end(), "a frame that is decoded was there, behind the last one");
            from = found + static_cast<std::ptrdiff_t>(wire.size());
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const std::size_t chunk = std::max<std::size_t>(input.Byte(), 1);
    const Bytes bytes = input.Bytes(size);
    Monitor(bytes, chunk, Split(bytes));
    Decode(bytes);
    return 0;
}
