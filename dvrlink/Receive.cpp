#include "dvrlink/Receive.h"

#include "app/log/DebugLog.h"
#include "dvrlink/LinkState.h"
#include "dvrlink/UART.h"

namespace {

constexpr WORD kOpeningQueries[] = {
    0x8010,  // DVR_RunningState
    0x8011,  // DVR_Mode
    0x802E,  // FW_Upgrade_Version
    0x8026,  // StorageCardStatus
};

void ReceiveByte() {
    BYTE byte = 0;
    DWORD received = 0;
    if (ReadFile(g_hComPort, &byte, 1, &received, nullptr) && received > 0)
        UART_ParseData(&byte, 1);
    else
        Sleep(1);
}

}  // namespace

DWORD WINAPI ThreadProc_COM_Rx(LPVOID) {
    LogEntry(__func__);
    constexpr BYTE kPayload[] = {0x00};
    for (const WORD query : kOpeningQueries)
        UART_SendCommand(query, kPayload, sizeof kPayload);
    do {
        ReceiveByte();
    } while (g_bReceiveRunning);
    LogExit(__func__);
    return 0;
}
