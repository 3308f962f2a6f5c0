#include "app/log/DebugLog.h"
#include "dvrlink/Dispatch.h"
#include "dvrlink/UART.h"

namespace {

constexpr WORD ShiftIn(WORD value, BYTE next) {
    return static_cast<WORD>((value << 8) | next);
}

// The frame being collected. Its sync field, always the last two bytes seen, finds its start.
class FrameCollector {
  public:
    void Take(BYTE byte) {
        if (m_frame.sync != kFrameSync) {
            m_frame.sync = ShiftIn(m_frame.sync, byte);
        } else if (m_typeBytes < 1) {
            m_frame.type = byte;
            ++m_typeBytes;
        } else if (m_commandBytes < 2) {
            m_frame.command = ShiftIn(m_frame.command, byte);
            ++m_commandBytes;
        } else if (m_lengthBytes < 2) {
            m_frame.length = ShiftIn(m_frame.length, byte);
            // No frame of the DVR's: its payload would not fit the record.
            if (++m_lengthBytes == 2 && m_frame.length > kMaxPayloadBytes)
                *this = FrameCollector();
        } else if (m_payloadBytes < m_frame.length) {
            m_frame.payload[m_payloadBytes++] = byte;
        } else {
            m_frame.checksum = ShiftIn(m_frame.checksum, byte);
            if (++m_checksumBytes == 2)
                Finish();
        }
    }

  private:
    void Finish() {
        DWORD sum = 0;
        if (UART_CheckSum(&m_frame, sizeof m_frame, &sum) &&
            static_cast<WORD>(sum) == m_frame.checksum)
            Dispatch_Command(&m_frame);
        *this = FrameCollector();
    }

    DvrFrame m_frame{};
    BYTE m_typeBytes = 0;
    BYTE m_commandBytes = 0;
    BYTE m_lengthBytes = 0;
    BYTE m_payloadBytes = 0;
    BYTE m_checksumBytes = 0;
};

FrameCollector g_collector;

}  // namespace

void UART_ParseData(const BYTE* bytes, DWORD count) {
    if (bytes == nullptr || count == 0) {
        LogFailure(L"%s\t%S, (!p_byRead || nSize<=0) fail!!!, ErrorCode(%d), %S(%d)\r\n",
                   "UART_ParseData", GetLastError());
        return;
    }
    for (DWORD index = 0; index < count; ++index)
        g_collector.Take(bytes[index]);
}
