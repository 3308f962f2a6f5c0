#pragma once

#include <windows.h>

#include <atomic>

#include "dvrlink/DvrFrame.h"

// What the parts of the link share. Locks and port come and go on the window's thread, while there
// is no receive thread.

extern std::atomic<HANDLE> g_hComPort;       // nullptr while closed
extern std::atomic<BOOL> g_bReceiveRunning;  // the receive thread reads it, the window's writes
extern BYTE g_bySendBuffer[kMaxFrameBytes];  // guarded by the send lock
extern DWORD g_dwSendLength;                 // guarded by the send lock
extern std::atomic<CRITICAL_SECTION*> g_pSendLock;      // nullptr until Memory_Init
extern std::atomic<CRITICAL_SECTION*> g_pCheckSumLock;  // nullptr until Memory_Init

// Creates the locks that do not exist yet; FALSE when one of them could not be.
BOOL Memory_Init();

// Deletes the locks. Always TRUE.
BOOL Memory_DeInit();

// Holds a critical section while it lasts.
class LockScope {
  public:
    explicit LockScope(CRITICAL_SECTION* lock) : m_lock(lock) { EnterCriticalSection(m_lock); }
    LockScope(const LockScope&) = delete;
    LockScope& operator=(const LockScope&) = delete;
    ~LockScope() { LeaveCriticalSection(m_lock); }

  private:
    CRITICAL_SECTION* m_lock;
};
