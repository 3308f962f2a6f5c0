#include "dvrsim/program/frame_text.h"

#include <cstdio>

#include "dvrsim/command_names.h"
#include "dvrsim/protocol.h"

namespace dvrsim {
namespace {

template <class Number>
std::string Hexadecimal(const char* format, Number number) {
    char text[16];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(number));
    return text;
}

std::string TypeText(std::uint8_t type) {
    switch (static_cast<FrameType>(type)) {
        case FrameType::kRequest:
            return "request";
        case FrameType::kAcknowledgement:
            return "answer";
        case FrameType::kIndication:
            return "report";
    }
    return Hexadecimal("type 0x%02X", type);
}

}  // namespace

std::string TextOf(const Frame& frame) {
    const std::string name(CommandName(frame.code));
    std::string text = TypeText(frame.type) + ' ' +
                       (name.empty() ? Hexadecimal("0x%04X", frame.code) : name) +
                       ((frame.code & kQueryBit) != 0 ? " query" : "");
    for (const std::uint8_t byte : frame.payload)
        text += Hexadecimal(" %02X", byte);
    return text;
}

}  // namespace dvrsim
