#pragma once

#include <algorithm>
#include <cstddef>

#include "dvrlink/DvrFrame.h"

using Handler = void(DvrFrame frame);

// How a handler begins: false, with a log line, when the frame is not of the handler's type; else
// it logs the command, and whether the frame answers a query.
bool AcceptFrame(const DvrFrame& frame, FrameType type, const char* handler);

// A handler's name as a template argument.
template <std::size_t kSize>
struct HandlerName {
    char text[kSize];

    constexpr HandlerName(const char (&name)[kSize]) { std::copy_n(name, kSize, text); }
};

// The handlers that only log.
template <FrameType kType, HandlerName kName>
void PlainHandler(DvrFrame frame) {
    AcceptFrame(frame, kType, kName.text);
}

template <HandlerName kName>
inline constexpr Handler& PlainAcknowledgement = PlainHandler<kFrameAcknowledgement, kName>;

template <HandlerName kName>
inline constexpr Handler& PlainIndication = PlainHandler<kFrameIndication, kName>;
