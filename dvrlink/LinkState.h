#pragma once

#include <windows.h>

#include <atomic>

#include "dvrlink/DvrFrame.h"

// What the parts of the link share. The window's thread creates and deletes locks and port, while
// there is no receive thread.

extern std::atomic<HANDLE> g_hComPort;       // nullptr while closed
extern std::atomic<BOOL> g_bReceiveRunning;  // the receive thread reads it, the window's writes
extern BYTE g_bySendBuffer[kMaxFrameBytes];  // guarded by the send lock
extern DWORD g_dwSendLength;                 // guarded by the send lock
extern std::atomic<CRITICAL_SECTION*> g_pSendLock;      // nullptr until Memory_Init
extern std::atomic<CRITICAL_SECTION*> g_pCheckSumLock;  // nullptr until Memory_Init

// Creates the locks that do not exist yet; FALSE when one of them could not be created.
BOOL Memory_Init();

// Deletes the locks. Always TRUE.
BOOL Memory_DeInit();

// Opens and configures the DVR's serial port as the link's port; TRUE at once when it is open
// already. On FALSE there is no port. The window's thread only.
BOOL COM_Init();

// Closes the link's port, if there is one, and returns the result of CloseHandle. Asks a receive
// thread to end but does not wait for it. The window's thread only.
BOOL COM_DeInit();

// Holds a critical section.
class LockScope {
  public:
    explicit LockScope(CRITICAL_SECTION* lock) : m_pLock(lock) { EnterCriticalSection(m_pLock); }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    ~LockScope() { LeaveCriticalSection(m_pLock); }

  private:
    CRITICAL_SECTION* m_pLock;
};
