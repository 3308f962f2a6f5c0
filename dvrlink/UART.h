#pragma once

#include <windows.h>

#include "dvrlink/DvrFrame.h"

// The serial link to the DVR. The program has one link. Failures are logged and passed over.

// Starts the link: locks, port, receive thread. What exists already is kept. FALSE without the
// locks or the port; without the receive thread the link can still send. The window's thread only.
BOOL UART_Init();

// Stops the link and waits for the receive thread; a thread that does not end is left behind, with
// the port and the locks that it uses. Dispatches messages that are sent to the caller's windows.
// Always TRUE, also for a link that is stopped. The window's thread only.
BOOL UART_DeInit();

// TRUE while there is a receive thread. After UART_DeInit: one was left behind, and may still run a
// handler. The window's thread only.
BOOL UART_HasThread();

// Sends one frame; the payload is not read when the length is 0. A payload of more than
// kMaxPayloadBytes, or a link without locks, sends nothing. The receive thread and the window's.
void UART_SendCommand(WORD command, const BYTE* payload, WORD length);

// Builds the frame in the link's send buffer, under its send lock; refuses what UART_SendCommand
// refuses.
void UART_BuildFrame(WORD command, const BYTE* payload, WORD length);

// Stores the unreduced sum of a received record. FALSE, with nothing summed, for no record, for a
// capacity below a whole record, for a length beyond the payload and before Memory_Init.
BOOL UART_CheckSum(const DvrFrame* frame, DWORD capacity, DWORD* sum);

// Takes the bytes in the order of the line, in chunks of any size, and runs the handler of every
// frame whose checksum matches before it returns. One thread at a time.
void UART_ParseData(const BYTE* bytes, DWORD count);
