#include "unit/line/frame_text.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "control/words.h"
#include "dvrsim/frame_codec.h"
#include "dvrsim/protocol.h"
#include "unit/line/frame_splitter.h"

namespace unit {
namespace {

using Payload = std::span<const std::uint8_t>;
using dvrsim::Command;

std::string Number(std::size_t number) {
    return std::to_string(number);
}

template <class Value>
std::string Named(Payload payload) {
    return Number(payload[0]) + " " + std::string(dvrsim::NameOf(static_cast<Value>(payload[0])));
}

// In quotes, what cannot be shown as \xNN; up to the first zero byte, as the program reads it.
std::string Quoted(Payload bytes) {
    std::string text = "'";
    for (const std::uint8_t byte : bytes.first(std::ranges::find(bytes, 0) - bytes.begin())) {
        char escaped[5];
        std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
        const bool plain = byte >= ' ' && byte < 0x7F && byte != '\'' && byte != '\\';
        text += plain ? std::string(1, static_cast<char>(byte)) : escaped;
    }
    return text + "'";
}

// The percent is the second byte of two, the third of more.
std::string CardText(Payload payload) {
    const std::size_t at = payload.size() == 2 ? 1 : 2;
    return Named<dvrsim::CardStatus>(payload) +
           (at < payload.size() ? " " + Number(payload[at]) + "%" : "");
}
std::string PercentText(Payload payload) {
    return Number(payload[0]) +
           (payload.size() > 1 ? " " + Quoted(payload.subspan(1)) : std::string());
}
std::string RecordText(Payload payload) {
    constexpr std::size_t kTimeBytes = 8;
    if (payload.size() < kTimeBytes)
        return HexText(payload);
    const bool recording = payload[0] == 1 || payload[0] == '1';
    return std::string(recording ? "recording " : "stopped ") + Quoted(payload.subspan(2, 6));
}

struct Decoder {
    Command command;
    dvrsim::FrameType type;
    std::string (*text)(Payload);
};
constexpr Decoder kDecoders[] = {
    {Command::kRunningState, dvrsim::FrameType::kAcknowledgement, Named<dvrsim::RunningState>},
    {Command::kRunningState, dvrsim::FrameType::kIndication, Named<dvrsim::RunningState>},
    {Command::kMode, dvrsim::FrameType::kAcknowledgement, Named<dvrsim::Mode>},
    {Command::kMode, dvrsim::FrameType::kIndication, Named<dvrsim::Mode>},
    {Command::kTime, dvrsim::FrameType::kAcknowledgement, Quoted},
    {Command::kTime, dvrsim::FrameType::kIndication, Quoted},
    {Command::kVideoRecord, dvrsim::FrameType::kIndication, RecordText},
    {Command::kStorageCardStatus, dvrsim::FrameType::kAcknowledgement, CardText},
    {Command::kStorageCardStatus, dvrsim::FrameType::kIndication, CardText},
    {Command::kQueryFileName, dvrsim::FrameType::kAcknowledgement, Quoted},
    {Command::kFirmwareUpgradeVersion, dvrsim::FrameType::kAcknowledgement, Quoted},
    {Command::kFirmwareUpgradeVersion, dvrsim::FrameType::kIndication, PercentText},
};

}  // namespace

std::string HexText(std::span<const std::uint8_t> bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
    }
    return text;
}

std::string DirectionName(Direction direction) {
    return direction == Direction::kToUnit ? "to unit" : "to DVR";
}

std::string FrameTypeName(std::uint8_t type) {
    switch (static_cast<dvrsim::FrameType>(type)) {
        case dvrsim::FrameType::kRequest:
            return "REQ";
        case dvrsim::FrameType::kAcknowledgement:
            return "ACK";
        case dvrsim::FrameType::kIndication:
            return "IND";
    }
    char text[5];
    std::snprintf(text, sizeof text, "0x%02X", type);
    return text;
}

std::string CodeName(std::uint16_t code) {
    const std::uint16_t number = code & ~dvrsim::kQueryBit;
    const std::string_view name = dvrsim::CommandName(number);
    char digits[7];
    std::snprintf(digits, sizeof digits, "0x%04X", number);
    return (name.empty() ? std::string(digits) : std::string(name)) +
           ((code & dvrsim::kQueryBit) != 0 ? " query" : "");
}

std::optional<std::uint16_t> ReadCommand(const std::string& word, std::string& problem) {
    if (const auto command = dvrsim::CommandNamed(word))
        return static_cast<std::uint16_t>(*command);
    const auto number = control::ReadNumber(word);
    if (number && *number >= 0 && *number < dvrsim::kQueryBit)
        return static_cast<std::uint16_t>(*number);
    const auto names = dvrsim::CommandNames();
    problem = "'" + word +
              "' is no command of the DVR; allowed is a name such as FW_Upgrade_Version, or a "
              "number such as 0x2E" +
              control::Suggestion(word, {names.begin(), names.end()});
    return std::nullopt;
}

std::string FrameName(std::span<const std::uint8_t> frame) {
    return FrameTypeName(frame[2]) + " " + CodeName(BigEndianAt(frame, 3));
}

std::string PayloadText(std::uint8_t type, std::uint16_t code, Payload payload) {
    if (payload.empty())
        return "-";
    for (const Decoder& decoder : kDecoders)
        if (static_cast<std::uint8_t>(decoder.type) == type &&
            static_cast<std::uint16_t>(decoder.command) == (code & ~dvrsim::kQueryBit))
            return decoder.text(payload);
    return HexText(payload);
}

}  // namespace unit
