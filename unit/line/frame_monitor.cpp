#include "unit/line/frame_monitor.h"

#include <cstdio>
#include <utility>

#include "dvrsim/frame_codec.h"
#include "dvrsim/protocol.h"
#include "unit/line/frame_text.h"

namespace unit {
namespace {

constexpr std::size_t kMostShown = 16;

// A run of stray bytes that does not end becomes several.
constexpr std::size_t kMostStray = 1024;

std::string FirstBytesText(const std::vector<std::uint8_t>& bytes) {
    const bool all = bytes.size() <= kMostShown;
    return HexText(std::span(bytes).first(all ? bytes.size() : kMostShown)) + (all ? "" : " ...");
}

std::string ChecksumText(const std::vector<std::uint8_t>& frame) {
    const std::size_t summed = frame.size() - kFrameChecksumBytes;
    char text[64];
    std::snprintf(text, sizeof text, "checksum bad: %04X, must be %04X", BigEndianAt(frame, summed),
                  ChecksumOf(std::span(frame).first(summed)));
    return text;
}

}  // namespace

std::uint16_t LineEntry::command() const {
    return code() & ~dvrsim::kQueryBit;
}

bool LineEntry::query() const {
    return (code() & dvrsim::kQueryBit) != 0;
}

std::span<const std::uint8_t> LineEntry::payload() const {
    if (bytes.size() < kFrameHeaderBytes + kFrameChecksumBytes)
        return {};
    return std::span(bytes).subspan(kFrameHeaderBytes,
                                    bytes.size() - kFrameHeaderBytes - kFrameChecksumBytes);
}

std::optional<int> LineEntry::percent() const {
    if (checksum_good() && type() == static_cast<std::uint8_t>(dvrsim::FrameType::kIndication) &&
        code() == static_cast<std::uint16_t>(dvrsim::Command::kFirmwareUpgradeVersion) &&
        !payload().empty())
        return payload()[0];
    return std::nullopt;
}

std::string LineEntry::StatusText() const {
    if (kind == Segment::Kind::kStray)
        return std::to_string(bytes.size()) + (bytes.size() == 1 ? " stray byte" : " stray bytes");
    if (bytes.size() == kFrameHeaderBytes)
        return "length " + std::to_string(BigEndianAt(bytes, 5)) + " is impossible";
    return checksum_good() ? "ok" : ChecksumText(bytes);
}

std::string LineEntry::Text() const {
    const std::string start = DirectionName(direction) + "  ";
    if (kind == Segment::Kind::kStray)
        return start + StatusText() + "  " + FirstBytesText(bytes);
    const std::string head = start + FrameTypeName(type()) + "  " + CodeName(code()) + "  ";
    if (bytes.size() == kFrameHeaderBytes)
        return head + StatusText();
    return head + PayloadText(type(), code(), payload()) + "  " + StatusText();
}

std::vector<LineEntry> FrameMonitor::Take(std::chrono::microseconds time,
                                          std::span<const std::uint8_t> bytes) {
    std::vector<LineEntry> entries;
    const auto keep = [&entries](std::optional<LineEntry> entry) {
        if (entry)
            entries.push_back(*std::move(entry));
    };
    if (!bytes.empty())
        keep(Settle(time));
    last_time_ = bytes.empty() ? last_time_ : time;
    for (const std::uint8_t byte : bytes) {
        auto segment = splitter_.Take(byte);
        if (!segment)
            continue;
        if (segment->kind == Segment::Kind::kStray) {
            if (stray_.size() + segment->bytes.size() > kMostStray)
                keep(EndStray());
            stray_.insert(stray_.end(), segment->bytes.begin(), segment->bytes.end());
            stray_time_ = time;
            continue;
        }
        keep(EndStray());
        keep(LineEntry{time, direction_, segment->kind, std::move(segment->bytes)});
    }
    return entries;
}

std::optional<LineEntry> FrameMonitor::Finish() {
    const std::vector<std::uint8_t> held = splitter_.GiveUp();
    if (!held.empty())
        stray_time_ = last_time_;
    stray_.insert(stray_.end(), held.begin(), held.end());
    return EndStray();
}

std::optional<LineEntry> FrameMonitor::Settle(std::chrono::microseconds now) {
    return now - stray_time_ >= kMaxGapInFrame ? EndStray() : std::nullopt;
}

std::optional<LineEntry> FrameMonitor::EndStray() {
    if (stray_.empty())
        return std::nullopt;
    return LineEntry{stray_time_, direction_, Segment::Kind::kStray, std::exchange(stray_, {})};
}

}  // namespace unit
