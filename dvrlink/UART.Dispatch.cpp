#include <algorithm>
#include <iterator>
#include <span>

#include "app/log/DebugLog.h"
#include "dvrlink/Handlers.h"

namespace {

struct DispatchRow {
    DWORD code;
    Handler* handler;
};

// Every command in its plain form, then every command in its query form.
#define PLAIN_ACK(code, name, acknowledgement, indication) {code, name##_ACK},
#define QUERY_ACK(code, name, acknowledgement, indication) {code | kQueryBit, name##_ACK},
#define PLAIN_IND(code, name, acknowledgement, indication) {code, name##_IND},
#define QUERY_IND(code, name, acknowledgement, indication) {code | kQueryBit, name##_IND},
constexpr DispatchRow kAcknowledgements[] = {DVR_COMMANDS(PLAIN_ACK) DVR_COMMANDS(QUERY_ACK)};
constexpr DispatchRow kIndications[] = {DVR_COMMANDS(PLAIN_IND) DVR_COMMANDS(QUERY_IND)};
#undef PLAIN_ACK
#undef QUERY_ACK
#undef PLAIN_IND
#undef QUERY_IND
static_assert(std::size(kAcknowledgements) == 62 && std::size(kIndications) == 62);

}  // namespace

void Dispatch_Command(const DvrFrame* frame) {
    if (frame == nullptr) {
        LogFailure(L"%s\t%S, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
        return;
    }
    if (frame->type != kFrameAcknowledgement && frame->type != kFrameIndication)
        return;
    const std::span<const DispatchRow> rows =
        frame->type == kFrameIndication ? kIndications : kAcknowledgements;
    const DWORD code = frame->command;
    const auto row = std::ranges::find(rows, code, &DispatchRow::code);
    if (row != rows.end())
        row->handler(*frame);
}

BOOL AcceptFrame(const DvrFrame& frame, FrameType type, const char* handler) {
    const DWORD command = frame.command;
    if (frame.type != type) {
        NKDbgPrintfW(L"%s\t%S, (0x%04X), Invalid Arguments!!!\r\n", kLogPrefix, handler, command);
        return FALSE;
    }
    if ((command & kQueryBit) != 0)
        NKDbgPrintfW(L"%s\t%S, (0x%04X), Query\r\n", kLogPrefix, handler, command);
    else
        NKDbgPrintfW(L"%s\t%S, (0x%04X)\r\n", kLogPrefix, handler, command);
    return TRUE;
}
