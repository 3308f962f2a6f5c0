#pragma once

#include <windef.h>

#include "handles.h"

#define CBR_9600 9600U
#define CBR_19200 19200U
#define CBR_38400 38400U
#define CBR_57600 57600U
#define CBR_115200 115200U
#define CBR_128000 128000U
#define CBR_256000 256000U

#define NOPARITY 0
#define ODDPARITY 1
#define EVENPARITY 2
#define MARKPARITY 3
#define SPACEPARITY 4

#define ONESTOPBIT 0
#define ONE5STOPBITS 1
#define TWOSTOPBITS 2

#define DTR_CONTROL_DISABLE 0x00
#define DTR_CONTROL_ENABLE 0x01
#define DTR_CONTROL_HANDSHAKE 0x02
#define RTS_CONTROL_DISABLE 0x00
#define RTS_CONTROL_ENABLE 0x01
#define RTS_CONTROL_HANDSHAKE 0x02
#define RTS_CONTROL_TOGGLE 0x03

#define EV_RXCHAR 0x0001U
#define EV_RXFLAG 0x0002U
#define EV_TXEMPTY 0x0004U
#define EV_CTS 0x0008U
#define EV_DSR 0x0010U
#define EV_RLSD 0x0020U
#define EV_BREAK 0x0040U
#define EV_ERR 0x0080U
#define EV_RING 0x0100U
#define EV_PERR 0x0200U
#define EV_RX80FULL 0x0400U
#define EV_EVENT1 0x0800U
#define EV_EVENT2 0x1000U
#define EV_POWER 0x2000U

struct _DCB {
    DWORD DCBlength;
    DWORD BaudRate;
    DWORD fBinary : 1;
    DWORD fParity : 1;
    DWORD fOutxCtsFlow : 1;
    DWORD fOutxDsrFlow : 1;
    DWORD fDtrControl : 2;
    DWORD fDsrSensitivity : 1;
    DWORD fTXContinueOnXoff : 1;
    DWORD fOutX : 1;
    DWORD fInX : 1;
    DWORD fErrorChar : 1;
    DWORD fNull : 1;
    DWORD fRtsControl : 2;
    DWORD fAbortOnError : 1;
    DWORD fDummy2 : 17;
    WORD wReserved;
    WORD XonLim;
    WORD XoffLim;
    BYTE ByteSize;
    BYTE Parity;
    BYTE StopBits;
    char XonChar;
    char XoffChar;
    char ErrorChar;
    char EofChar;
    char EvtChar;
    WORD wReserved1;
};
using DCB = _DCB;
using LPDCB = DCB*;

static_assert(sizeof(DCB) == 28 && offsetof(DCB, BaudRate) == 4);
static_assert(offsetof(DCB, wReserved) == 12 && offsetof(DCB, XonLim) == 14);
static_assert(offsetof(DCB, ByteSize) == 18 && offsetof(DCB, StopBits) == 20);
static_assert(offsetof(DCB, EvtChar) == 25 && offsetof(DCB, wReserved1) == 26);

// Milliseconds.
struct _COMMTIMEOUTS {
    DWORD ReadIntervalTimeout;
    DWORD ReadTotalTimeoutMultiplier;
    DWORD ReadTotalTimeoutConstant;
    DWORD WriteTotalTimeoutMultiplier;
    DWORD WriteTotalTimeoutConstant;
};
using COMMTIMEOUTS = _COMMTIMEOUTS;
using LPCOMMTIMEOUTS = COMMTIMEOUTS*;

static_assert(sizeof(COMMTIMEOUTS) == 20);

extern "C" {

BOOL WINAPI GetCommState(HANDLE hFile, LPDCB lpDCB);
BOOL WINAPI SetCommState(HANDLE hFile, LPDCB lpDCB);
BOOL WINAPI GetCommTimeouts(HANDLE hFile, LPCOMMTIMEOUTS lpCommTimeouts);
BOOL WINAPI SetCommTimeouts(HANDLE hFile, LPCOMMTIMEOUTS lpCommTimeouts);
BOOL WINAPI GetCommMask(HANDLE hFile, LPDWORD lpEvtMask);
BOOL WINAPI SetCommMask(HANDLE hFile, DWORD dwEvtMask);

}  // extern "C"
