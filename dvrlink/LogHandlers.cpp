// The handlers that decode their payload for the debug output alone.
#include <algorithm>
#include <charconv>
#include <iterator>

#include "app/log/DebugLog.h"
#include "dvrlink/HandlerSupport.h"
#include "dvrlink/Handlers.h"

namespace {

constexpr WORD kTimeTextBytes = 13;

void LogMode(const DvrFrame& frame, const char* handler) {
    if (frame.length == 0) {
        LogInvalidLength(handler);
        return;
    }
    const BYTE mode = frame.payload[0];
    switch (mode) {
        case 0:
            NKDbgPrintfW(L"%s\t%S, DVR_Mode:%d, DVR_MODE_VIDEO\r\n", kLogPrefix, handler, mode);
            break;
        case 1:
            NKDbgPrintfW(L"%s\t%S, DVR_Mode:%d, DVR_MODE_PHOTO\r\n", kLogPrefix, handler, mode);
            break;
        case 2:
            NKDbgPrintfW(L"%s\t%S, DVR_Mode:%d, DVR_MODE_PLAY\r\n", kLogPrefix, handler, mode);
            break;
        default:
            NKDbgPrintfW(L"%s\t%S, DVR_Mode:%d, enDVR_Mode!!!\r\n", kLogPrefix, handler, mode);
            break;
    }
}

// False, with a log line, when the payload is too short for a time.
bool LogTimeText(const DvrFrame& frame, const char* handler) {
    if (frame.length < kTimeTextBytes) {
        LogInvalidLength(handler);
        return false;
    }
    NKDbgPrintfW(L"%s\t%S, %S\r\n", kLogPrefix, handler, TextAt(frame, 0).data());
    return true;
}

// Two decimal digits; 0 when the first is none.
WORD TwoDigits(const BYTE* characters) {
    const char text[] = {static_cast<char>(characters[0]), static_cast<char>(characters[1])};
    WORD value = 0;
    std::from_chars(std::begin(text), std::end(text), value);
    return value;
}

}  // namespace

void DVR_Mode_ACK(DvrFrame frame) {
    LogMode(frame, __func__);
}

void DVR_Mode_IND(DvrFrame frame) {
    if (AcceptFrame(frame, kFrameIndication, __func__))
        LogMode(frame, __func__);
}

void Time_ACK(DvrFrame frame) {
    LogTimeText(frame, __func__);
}

void Time_IND(DvrFrame frame) {
    if (!LogTimeText(frame, __func__))
        return;
    NKDbgPrintfW(L"%s\t%S, [", kLogPrefix, __func__);
    const WORD length = frame.length;  // a packed field binds to no reference
    for (WORD index = 0; index < std::min(length, kMaxPayloadBytes); ++index)
        NKDbgPrintfW(L"%02X ", frame.payload[index]);
    NKDbgPrintfW(L"\r\n");
}

void Video_Record_IND(DvrFrame frame) {
    const int recording = frame.payload[0] == 0x01 || frame.payload[0] == '1';
    const WORD hours = TwoDigits(frame.payload + 2);
    const WORD minutes = TwoDigits(frame.payload + 4);
    const WORD seconds = TwoDigits(frame.payload + 6);
    NKDbgPrintfW(L"%s\t%S, VideoRecord: 0x%X, Recording Time: %02d:%02d:%02d\r\n", kLogPrefix,
                 __func__, recording, hours, minutes, seconds);
}
