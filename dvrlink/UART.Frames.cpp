// Frames: building, sending, the sum, the parser.
#include <algorithm>
#include <iterator>
#include <numeric>

#include "app/log/DebugLog.h"
#include "dvrlink/Handlers.h"
#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"

namespace {

constexpr wchar_t kInvalidArguments[] = L"%s\t%S, Invalid Arguments!!!, ErrorCode(%d), %S(%d)\r\n";

constexpr BYTE HighByte(WORD value) {
    return static_cast<BYTE>(value >> 8);
}
constexpr BYTE LowByte(WORD value) {
    return static_cast<BYTE>(value & 0xFF);
}
constexpr WORD ShiftIn(WORD value, BYTE next) {
    return static_cast<WORD>((value << 8) | next);
}

bool CanSend(const CRITICAL_SECTION* lock, const BYTE* payload, WORD length) {
    return lock != nullptr && length <= kMaxPayloadBytes && (payload != nullptr || length == 0);
}

// The frame being collected. Its sync field holds the last two bytes until they are the sync pair.
class FrameCollector {
  public:
    void Take(BYTE byte) {
        if (m_Frame.sync != kFrameSync) {
            m_Frame.sync = ShiftIn(m_Frame.sync, byte);
        } else if (m_nTypeBytes < 1) {
            m_Frame.type = byte;
            ++m_nTypeBytes;
        } else if (m_nCommandBytes < 2) {
            m_Frame.command = ShiftIn(m_Frame.command, byte);
            ++m_nCommandBytes;
        } else if (m_nLengthBytes < 2) {
            m_Frame.length = ShiftIn(m_Frame.length, byte);
            // A longer payload does not fit the record.
            if (++m_nLengthBytes == 2 && m_Frame.length > kMaxPayloadBytes)
                *this = FrameCollector();
        } else if (m_nPayloadBytes < m_Frame.length) {
            m_Frame.payload[m_nPayloadBytes++] = byte;
        } else {
            m_Frame.checksum = ShiftIn(m_Frame.checksum, byte);
            if (++m_nChecksumBytes == 2)
                Finish();
        }
    }

  private:
    void Finish() {
        DWORD sum = 0;
        if (UART_CheckSum(&m_Frame, sizeof m_Frame, &sum) &&
            static_cast<WORD>(sum) == m_Frame.checksum)
            Dispatch_Command(&m_Frame);
        *this = FrameCollector();
    }

    DvrFrame m_Frame{};
    BYTE m_nTypeBytes = 0;
    BYTE m_nCommandBytes = 0;
    BYTE m_nLengthBytes = 0;
    BYTE m_nPayloadBytes = 0;
    BYTE m_nChecksumBytes = 0;
};

FrameCollector g_collector;

}  // namespace

void UART_BuildFrame(WORD command, const BYTE* payload, WORD length) {
    CRITICAL_SECTION* const lock = g_pSendLock;
    if (!CanSend(lock, payload, length)) {
        LogFailure(kInvalidArguments, __func__, GetLastError());
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
        LogFailure(kInvalidArguments, __func__, GetLastError());
        return;
    }
    // Held over build and write: the other thread's frame must not take the buffer in between.
    const LockScope hold(lock);
    UART_BuildFrame(command, payload, length);
    DWORD written = 0;
    if (!WriteFile(g_hComPort, g_bySendBuffer, g_dwSendLength, &written, nullptr))
        LogFailure(L"%s\t%S, WriteFile() fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
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

void UART_ParseData(const BYTE* bytes, DWORD count) {
    if (bytes == nullptr || count == 0) {
        LogFailure(L"%s\t%S, (!p_byRead || nSize<=0) fail!!!, ErrorCode(%d), %S(%d)\r\n", __func__,
                   GetLastError());
        return;
    }
    for (DWORD index = 0; index < count; ++index)
        g_collector.Take(bytes[index]);
}
