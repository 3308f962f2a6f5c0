#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "app/log/DebugLog.h"
#include "dvrlink/DvrFrame.h"

// The payload from an offset on as zero-terminated text. A payload that fills the record has no
// terminator of its own.
using PayloadText = std::array<char, kMaxPayloadBytes + 1>;

inline PayloadText TextAt(const DvrFrame& frame, std::size_t offset) {
    PayloadText text{};
    std::copy(frame.payload + offset, frame.payload + kMaxPayloadBytes, text.begin());
    return text;
}

inline void LogInvalidLength(const char* handler) {
    NKDbgPrintfW(L"%s\t%S, wLen invalid!!!\r\n", kLogPrefix, handler);
}
