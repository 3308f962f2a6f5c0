// The handlers that decode their payload.
#include "dvrlink/Handlers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <string_view>

#include "app/log/DebugLog.h"
#include "wizard/DvrReports.h"

namespace {

constexpr WORD kTimeTextBytes = 13;
constexpr std::string_view kDefaultVersion = "14.04.25.V0.01.00";
constexpr std::size_t kShownVersionOffset = 10;

// A payload that fills the record has no terminator of its own.
using PayloadText = std::array<char, kMaxPayloadBytes + 1>;

// The payload from an offset on as zero-terminated text.
PayloadText TextAt(const DvrFrame& frame, std::size_t offset) {
    PayloadText text{};
    std::copy(frame.payload + offset, frame.payload + kMaxPayloadBytes, text.begin());
    return text;
}

bool IsQuery(const DvrFrame& frame) {
    return (frame.command & kQueryBit) != 0;
}

void LogInvalidLength(const char* handler) {
    NKDbgPrintfW(L"%s\t%S, wLen invalid!!!\r\n", kLogPrefix, handler);
}

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

// FALSE, with a log line, when the payload is too short for a time.
BOOL LogTimeText(const DvrFrame& frame, const char* handler) {
    if (frame.length < kTimeTextBytes) {
        LogInvalidLength(handler);
        return FALSE;
    }
    NKDbgPrintfW(L"%s\t%S, %S\r\n", kLogPrefix, handler, TextAt(frame, 0).data());
    return TRUE;
}

// Two decimal digits; 0 when the first is not a digit.
WORD TwoDigits(const BYTE* characters) {
    const char text[] = {static_cast<char>(characters[0]), static_cast<char>(characters[1])};
    WORD value = 0;
    std::from_chars(std::begin(text), std::end(text), value);
    return value;
}

void ReportStorageCard(const DvrFrame& frame) {
    const BYTE percent = frame.length == 2 ? frame.payload[1] : frame.payload[2];
    DvrReport_StorageCard(frame.payload[0], percent);
}

}  // namespace

void DVR_RunningState_ACK(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameAcknowledgement, __func__) || !IsQuery(frame))
        return;
    if (frame.length != 0)
        DvrReport_RunningState(frame.payload[0]);
    else if (DvrReport_HasMainFrame())
        LogInvalidLength(__func__);
}

void DVR_RunningState_IND(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameIndication, __func__))
        return;
    if (frame.length == 0 || !DvrReport_RunningState(frame.payload[0]))
        LogInvalidLength(__func__);
}

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

void StorageCardStatus_ACK(DvrFrame frame) {
    if (AcceptFrame(frame, kFrameAcknowledgement, __func__) && IsQuery(frame))
        ReportStorageCard(frame);
}

void StorageCardStatus_IND(DvrFrame frame) {
    if (AcceptFrame(frame, kFrameIndication, __func__))
        ReportStorageCard(frame);
}

void FW_Upgrade_Version_ACK(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameAcknowledgement, __func__))
        return;
    PayloadText version = TextAt(frame, 0);
    if (frame.length < kDefaultVersion.size()) {
        version = {};
        std::copy(kDefaultVersion.begin(), kDefaultVersion.end(), version.begin());
    }
    DvrReport_Version(version.data() + kShownVersionOffset);
    NKDbgPrintfW(L"%s\t%S, DVR Firmware : [%S]\r\n", kLogPrefix, __func__, version.data());
}

void FW_Upgrade_Version_IND(DvrFrame frame) {
    if (!AcceptFrame(frame, kFrameIndication, __func__))
        return;
    const BYTE percent = frame.payload[0];
    NKDbgPrintfW(L"%s\t%S, Percent:%d%%\r\n", kLogPrefix, __func__, percent);
    DvrReport_UpdatePercent(percent);
    if (frame.length < 2)
        return;
    NKDbgPrintfW(L"%s\t%S, Bin Version:%S\r\n", kLogPrefix, __func__, TextAt(frame, 1).data());
    DvrReport_ImageVersion(frame.payload[1]);
}
