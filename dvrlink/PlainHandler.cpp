#include "dvrlink/PlainHandler.h"

#include "app/log/DebugLog.h"

bool AcceptFrame(const DvrFrame& frame, FrameType type, const char* handler) {
    const DWORD command = frame.command;
    if (frame.type != type) {
        NKDbgPrintfW(L"%s\t%S, (0x%04X), Invalid Arguments!!!\r\n", kLogPrefix, handler, command);
        return false;
    }
    if ((command & kQueryBit) != 0)
        NKDbgPrintfW(L"%s\t%S, (0x%04X), Query\r\n", kLogPrefix, handler, command);
    else
        NKDbgPrintfW(L"%s\t%S, (0x%04X)\r\n", kLogPrefix, handler, command);
    return true;
}
