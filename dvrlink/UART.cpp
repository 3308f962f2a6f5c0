#include "dvrlink/UART.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <numeric>

#include "app/log/DebugLog.h"
#include "dvrlink/LinkState.h"

namespace {

constexpr wchar_t kInvalidArguments[] = L"%s\t%S, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n";

constexpr BYTE HighByte(WORD value) {
    return static_cast<BYTE>(value >> 8);
}
constexpr BYTE LowByte(WORD value) {
    return static_cast<BYTE>(value & 0xFF);
}

bool CanSend(const CRITICAL_SECTION* lock, const BYTE* payload, WORD length) {
    return lock != nullptr && length <= kMaxPayloadBytes && (payload != nullptr || length == 0);
}

}  // namespace

void UART_BuildFrame(WORD command, const BYTE* payload, WORD length) {
    CRITICAL_SECTION* const lock = g_pSendLock;
    if (!CanSend(lock, payload, length)) {
        LogFailure(kInvalidArguments, "UART_BuildFrame", GetLastError());
        return;
    }
    const LockScope hold(lock);
    const BYTE header[] = {HighByte(kFrameSync), LowByte(kFrameSync), kFrameCommand,
                           HighByte(command),    LowByte(command),    HighByte(length),
                           LowByte(length)};
    static_assert(sizeof header == kHeaderBytes);
    std::fill(std::begin(g_bySendBuffer), std::end(g_bySendBuffer), BYTE{0});
    BYTE* end = std::copy(std::begin(header), std::end(header), g_bySendBuffer);
    end = std::copy_n(payload, length, end);
    const auto sum = static_cast<WORD>(std::accumulate(g_bySendBuffer, end, DWORD{0}));
    *end++ = HighByte(sum);
    *end++ = LowByte(sum);
    g_dwSendLength = static_cast<DWORD>(end - g_bySendBuffer);
}

void UART_SendCommand(WORD command, const BYTE* payload, WORD length) {
    CRITICAL_SECTION* const lock = g_pSendLock;
    if (!CanSend(lock, payload, length)) {
        LogFailure(kInvalidArguments, "UART_SendCommand", GetLastError());
        return;
    }
    // Held over build and write: the other thread's frame must not take the buffer in between.
    const LockScope hold(lock);
    UART_BuildFrame(command, payload, length);
    DWORD written = 0;
    if (!WriteFile(g_hComPort, g_bySendBuffer, g_dwSendLength, &written, nullptr))
        LogFailure(L"%s\t%S, WriteFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", "UART_SendCommand",
                   GetLastError());
}

BOOL UART_CheckSum(const DvrFrame* frame, DWORD capacity, DWORD* sum) {
    CRITICAL_SECTION* const lock = g_pCheckSumLock;
    if (frame == nullptr || capacity < sizeof *frame || frame->length > kMaxPayloadBytes ||
        lock == nullptr)
        return FALSE;
    const LockScope hold(lock);
    DWORD total = frame->type;
    for (const WORD field : {frame->sync, frame->command, frame->length})
        total += DWORD{HighByte(field)} + LowByte(field);
    total = std::accumulate(frame->payload, frame->payload + frame->length, total);
    if (sum != nullptr)
        *sum = total;
    return TRUE;
}
