#include "unit/traces/pcapng_encoder.h"

#include <cstdint>
#include <ranges>
#include <utility>

#include "control/build_info.h"
#include "unit/events/event_text.h"
#include "unit/line/frame_text.h"
#include "unit/line/memory_line.h"

namespace unit {
namespace {

// The format's numbers. Blocks are in the order of bytes of the writer, here little-endian.
constexpr std::uint32_t kSectionHeader = 0x0A0D0D0A;
constexpr std::uint32_t kByteOrder = 0x1A2B3C4D;
constexpr std::uint32_t kInterface = 1;
constexpr std::uint32_t kPacket = 6;
constexpr std::uint16_t kMajorVersion = 1;
constexpr std::uint16_t kMinorVersion = 0;
constexpr std::uint64_t kUnknownLength = ~std::uint64_t{0};
// Reserved for private use.
constexpr std::uint16_t kLinkTypeUser0 = 147;
constexpr std::uint32_t kNoLimit = 0;

enum Option : std::uint16_t {
    kEndOfOptions = 0,
    kComment = 1,
    kHardware = 2,
    kApplication = 4,
    kInterfaceName = 2,
    kInterfaceDescription = 3,
    kInterfaceSpeed = 8,
    kTimeResolution = 9,
    kPacketFlags = 2,
};
constexpr std::uint8_t kMicroseconds = 6;  // the negative power of ten
constexpr std::uint32_t kInbound = 1;
constexpr std::uint32_t kOutbound = 2;

// More comments on one packet help nobody.
constexpr std::size_t kMaxComments = 32;

constexpr std::size_t kAlignment = 4;

template <class Number>
std::string Bytes(Number number) {
    std::string bytes;
    for (std::size_t index = 0; index < sizeof number; ++index)
        bytes += static_cast<char>(number >> (8 * index) & 0xFF);
    return bytes;
}

std::string Padded(std::string bytes) {
    bytes.resize((bytes.size() + kAlignment - 1) / kAlignment * kAlignment);
    return bytes;
}

std::string OptionOf(Option option, const std::string& value) {
    constexpr std::size_t kMaxBytes = 0xFFFF;
    const std::string kept = value.substr(0, kMaxBytes);
    return Bytes<std::uint16_t>(option) + Bytes(static_cast<std::uint16_t>(kept.size())) +
           Padded(kept);
}

std::string Block(std::uint32_t type, const std::string& fields, const std::string& options) {
    const std::string content = fields + options + OptionOf(kEndOfOptions, {});
    constexpr std::size_t kFrame = 12;  // type, length, length again
    const std::string length = Bytes(static_cast<std::uint32_t>(content.size() + kFrame));
    return Bytes(type) + length + content + length;
}

// In the order of the interfaces' numbers.
constexpr Direction kInterfaces[] = {Direction::kToUnit, Direction::kToDvr};

std::string InterfaceBlock(Direction direction) {
    const std::string name = DirectionName(direction);
    return Block(kInterface, Bytes(kLinkTypeUser0) + Bytes(std::uint16_t{0}) + Bytes(kNoLimit),
                 OptionOf(kInterfaceName, name) +
                     OptionOf(kInterfaceDescription, "Serial line of the DVR, " + name) +
                     OptionOf(kInterfaceSpeed, Bytes<std::uint64_t>(kDvrBaudRate)) +
                     OptionOf(kTimeResolution, Bytes(kMicroseconds)));
}

}  // namespace

void PcapngEncoder::OnBegin(const TraceStart& start) {
    Append(Block(
        kSectionHeader,
        Bytes(kByteOrder) + Bytes(kMajorVersion) + Bytes(kMinorVersion) + Bytes(kUnknownLength),
        OptionOf(kHardware, "virtual unit, program " + start.program) +
            OptionOf(kApplication, "tolvane " + control::BuildInfo())));
    for (const Direction direction : kInterfaces)
        Append(InterfaceBlock(direction));
}

void PcapngEncoder::OnEvent(const TimedEvent& timed) {
    if (const auto* const fault = std::get_if<FaultApplied>(&timed.event))
        return AddFault(timed.time, fault->text);
    const auto* const entry = std::get_if<LineEntry>(&timed.event);
    if (!entry || entry->direction == Direction::kToUnit || sent_.empty() ||
        sent_.back().entry.time != entry->time)
        WriteSent();
    if (entry)
        AddEntry(*entry);
    else if (std::holds_alternative<EventsLost>(timed.event))
        WriteComment(timed.time, Direction::kToUnit,
                     "events are missing here: " + EventLine(timed.event));
}

void PcapngEncoder::OnEnd(std::chrono::microseconds time) {
    WriteSent();
    for (const std::string& text : std::exchange(coming_, {}))
        WriteComment(time, Direction::kToUnit, text);
}

// The text is that of LineFaults: the rule with its direction if it has only one, and the frame.
void PcapngEncoder::AddFault(std::chrono::microseconds time, const std::string& text) {
    const std::size_t end = text.rfind("): ");
    const std::string rule = text.substr(0, end);
    const std::string target = end == std::string::npos ? std::string() : text.substr(end);
    const bool to_dvr = rule.ends_with(" to-dvr") || rule.find(" to-dvr ") != std::string::npos;
    const bool to_unit = rule.ends_with(" to-unit") || rule.find(" to-unit ") != std::string::npos;
    if (!to_unit && !sent_.empty()) {
        const auto named = [&](const Packet& packet) {
            return packet.entry.kind == Segment::Kind::kFrame &&
                   target.find(": " + FrameName(packet.entry.bytes) + ",") != std::string::npos;
        };
        for (Packet& packet : sent_ | std::views::reverse)
            if (named(packet)) {
                packet.comments.push_back(text);
                return;
            }
        if (to_dvr) {
            sent_.back().comments.push_back(text);
            return;
        }
    }
    WriteSent();
    // What was dropped never comes.
    if (to_dvr || rule.find("(drop ") != std::string::npos)
        WriteComment(time, to_dvr ? Direction::kToDvr : Direction::kToUnit, text);
    else
        coming_.push_back(text);
}

void PcapngEncoder::AddEntry(const LineEntry& entry) {
    if (entry.direction == Direction::kToDvr)
        sent_.push_back({entry, {}});
    else
        WritePacket({entry, std::exchange(coming_, {})});
}

void PcapngEncoder::WriteSent() {
    for (const Packet& packet : std::exchange(sent_, {}))
        WritePacket(packet);
}

void PcapngEncoder::WriteComment(std::chrono::microseconds time, Direction direction,
                                 const std::string& text) {
    WritePacket({{time, direction, Segment::Kind::kStray, {}}, {text}});
}

void PcapngEncoder::WritePacket(const Packet& packet) {
    const LineEntry& entry = packet.entry;
    const bool to_unit = entry.direction == Direction::kToUnit;
    const auto time = static_cast<std::uint64_t>(entry.time.count());
    const auto size = static_cast<std::uint32_t>(entry.bytes.size());
    std::string options = OptionOf(kPacketFlags, Bytes(to_unit ? kInbound : kOutbound));
    for (const std::string& comment : packet.comments | std::views::take(kMaxComments))
        options += OptionOf(kComment, comment);
    if (packet.comments.size() > kMaxComments)
        options += OptionOf(kComment,
                            std::to_string(packet.comments.size() - kMaxComments) + " more faults");
    Append(Block(kPacket,
                 Bytes<std::uint32_t>(to_unit ? 0 : 1) +
                     Bytes(static_cast<std::uint32_t>(time >> 32)) +
                     Bytes(static_cast<std::uint32_t>(time & 0xFFFFFFFF)) + Bytes(size) +
                     Bytes(size) + Padded({entry.bytes.begin(), entry.bytes.end()}),
                 options));
}

}  // namespace unit
