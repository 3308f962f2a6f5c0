#pragma once

// What Windows CE has and the desktop's own headers lack, declared as Windows CE declares it, so
// that the program compiles against a desktop compiler's <windows.h>. Declarations only: nothing
// links.

#include <windows.h>

#include <winioctl.h>

extern "C" {

void WINAPIV NKDbgPrintfW(LPCWSTR lpszFmt, ...);

BOOL WINAPI KernelIoControl(DWORD dwIoControlCode, LPVOID lpInBuf, DWORD nInBufSize,
                            LPVOID lpOutBuf, DWORD nOutBufSize, LPDWORD lpBytesReturned);

// winbase.h
typedef struct _SYSTEM_POWER_STATUS_EX2 {
    BYTE ACLineStatus;
    BYTE BatteryFlag;
    BYTE BatteryLifePercent;
    BYTE Reserved1;
    DWORD BatteryLifeTime;
    DWORD BatteryFullLifeTime;
    BYTE Reserved2;
    BYTE BackupBatteryFlag;
    BYTE BackupBatteryLifePercent;
    BYTE Reserved3;
    DWORD BackupBatteryLifeTime;
    DWORD BackupBatteryFullLifeTime;
    DWORD BatteryVoltage;
    DWORD BatteryCurrent;
    DWORD BatteryAverageCurrent;
    DWORD BatteryAverageInterval;
    DWORD BatterymAHourConsumed;
    DWORD BatteryTemperature;
    DWORD BackupBatteryVoltage;
    BYTE BatteryChemistry;
} SYSTEM_POWER_STATUS_EX2, *PSYSTEM_POWER_STATUS_EX2, *LPSYSTEM_POWER_STATUS_EX2;

DWORD WINAPI GetSystemPowerStatusEx2(PSYSTEM_POWER_STATUS_EX2 pSystemPowerStatusEx2, DWORD dwLen,
                                     BOOL fUpdate);

// wingdi.h
BOOL WINAPI TransparentImage(HDC hdcDest, LONG DstX, LONG DstY, LONG DstCx, LONG DstCy, HANDLE hSrc,
                             LONG SrcX, LONG SrcY, LONG SrcCx, LONG SrcCy,
                             COLORREF TransparentColor);

// msgqueue.h
typedef struct MSGQUEUEOPTIONS_OS {
    DWORD dwSize;
    DWORD dwFlags;
    DWORD dwMaxMessages;
    DWORD cbMaxMessage;
    BOOL bReadAccess;
} MSGQUEUEOPTIONS, *PMSGQUEUEOPTIONS, *LPMSGQUEUEOPTIONS;

HANDLE WINAPI CreateMsgQueue(LPCWSTR lpszName, LPMSGQUEUEOPTIONS lpOptions);
BOOL WINAPI ReadMsgQueue(HANDLE hMsgQ, LPVOID lpBuffer, DWORD cbBufferSize,
                         LPDWORD lpNumberOfBytesRead, DWORD dwTimeout, DWORD* pdwFlags);
BOOL WINAPI CloseMsgQueue(HANDLE hMsgQ);

// pm.h
typedef struct _POWER_BROADCAST {
    DWORD Message;
    DWORD Flags;
    DWORD Length;
    WCHAR SystemPowerState[1];
} POWER_BROADCAST, *PPOWER_BROADCAST;

HANDLE WINAPI RequestPowerNotifications(HANDLE hMsgQ, DWORD Flags);
DWORD WINAPI StopPowerNotifications(HANDLE h);

}  // extern "C"

// The entry point with wide text is WinMain there; the desktop's start-up calls it wWinMain.
#define WinMain wWinMain

// The desktop has a function of this name with other parameters.
DWORD WINAPI SetSystemPowerState(LPCWSTR pwsSystemState, DWORD StateFlags, DWORD Options);

#define PBT_TRANSITION 0x00000001
#define PBT_RESUME 0x00000002
#define PBT_POWERSTATUSCHANGE 0x00000004
#define PBT_POWERINFOCHANGE 0x00000008

#define POWER_FORCE 0x00001000
#define POWER_STATE_OFF 0x00020000
#define POWER_STATE_SUSPEND 0x00200000
