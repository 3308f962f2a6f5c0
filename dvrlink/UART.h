#pragma once

#include <windows.h>

#include "dvrlink/DvrFrame.h"

// The serial link to the DVR. There is one link in the program. Failures are logged and passed
// over.

// Brings the link up: locks, port, receive thread. Whatever is up already is kept. FALSE without
// the locks or the port; without the receive thread the link can still send. The window's thread
// only.
BOOL UART_Init();

// Takes the link down; the receive thread has ended when it returns. Messages sent to the caller's
// windows are let in meanwhile. Always TRUE; a link that is down stays so. The window's thread
// only.
BOOL UART_DeInit();

// Sends one frame; the payload is not read when the length is 0. A payload of more than
// kMaxPayloadBytes, or a link without locks, sends nothing. The receive thread and the window's.
void UART_SendCommand(WORD command, const BYTE* payload, WORD length);

// Builds the frame in the link's send buffer, under its send lock; refuses what UART_SendCommand
// refuses.
void UART_BuildFrame(WORD command, const BYTE* payload, WORD length);

// Stores the unreduced sum of a received record. FALSE, with nothing summed, for no record, for a
// capacity below a whole record, for a length beyond the payload and before Memory_Init.
BOOL UART_CheckSum(const DvrFrame* frame, DWORD capacity, DWORD* sum);

// Takes bytes as they come from the line and runs the handler of every frame whose checksum matches
// before it returns. The bytes of a frame may come in any grouping. One thread at a time.
void UART_ParseData(const BYTE* bytes, DWORD count);
