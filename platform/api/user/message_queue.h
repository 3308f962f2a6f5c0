#pragma once

#include <windef.h>

#include "../base/errors.h"
#include "../base/sync.h"

#define PM_NOREMOVE 0x0000U
#define PM_REMOVE 0x0001U

#define QS_KEY 0x0001U
#define QS_MOUSEMOVE 0x0002U
#define QS_MOUSEBUTTON 0x0004U
#define QS_POSTMESSAGE 0x0008U
#define QS_TIMER 0x0010U
#define QS_PAINT 0x0020U
#define QS_SENDMESSAGE 0x0040U
#define QS_MOUSE (QS_MOUSEMOVE | QS_MOUSEBUTTON)
#define QS_INPUT (QS_MOUSE | QS_KEY)
#define QS_ALLEVENTS (QS_INPUT | QS_POSTMESSAGE | QS_TIMER | QS_PAINT)
#define QS_ALLINPUT (QS_ALLEVENTS | QS_SENDMESSAGE)

struct tagMSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using MSG = tagMSG;
using PMSG = MSG*;
using LPMSG = MSG*;

using TIMERPROC = void(CALLBACK*)(HWND hwnd, UINT uMsg, UINT_PTR idEvent, DWORD dwTime);

extern "C" {

BOOL WINAPI GetMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax);
BOOL WINAPI PeekMessageW(LPMSG lpMsg, HWND hWnd, UINT wMsgFilterMin, UINT wMsgFilterMax,
                         UINT wRemoveMsg);
BOOL WINAPI TranslateMessage(CONST MSG* lpMsg);
LRESULT WINAPI DispatchMessageW(CONST MSG* lpMsg);

BOOL WINAPI PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
void WINAPI PostQuitMessage(int nExitCode);

// To a window of another thread: waits until that thread has handled the message, which it does in
// its next call that handles sent messages.
LRESULT WINAPI SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);
// From 0xC000 to 0xFFFF, the same for the same text in every process; 0 on failure.
UINT WINAPI RegisterWindowMessageW(LPCWSTR lpString);

UINT_PTR WINAPI SetTimer(HWND hWnd, UINT_PTR nIDEvent, UINT uElapse, TIMERPROC lpTimerFunc);
BOOL WINAPI KillTimer(HWND hWnd, UINT_PTR uIDEvent);

// As on the device, waiting for all is not supported: ERROR_INVALID_PARAMETER.
DWORD WINAPI MsgWaitForMultipleObjects(DWORD nCount, CONST HANDLE* pHandles, BOOL fWaitAll,
                                       DWORD dwMilliseconds, DWORD dwWakeMask);

}  // extern "C"
