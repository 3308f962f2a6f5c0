#include <initializer_list>
#include <new>

#include "app/log/DebugLog.h"
#include "dvrlink/LinkState.h"

std::atomic<HANDLE> g_hComPort{nullptr};
std::atomic<BOOL> g_bReceiveRunning{FALSE};
BYTE g_bySendBuffer[kMaxFrameBytes] = {};
DWORD g_dwSendLength = 0;
std::atomic<CRITICAL_SECTION*> g_pSendLock{nullptr};
std::atomic<CRITICAL_SECTION*> g_pCheckSumLock{nullptr};

BOOL Memory_Init() {
    BOOL complete = TRUE;
    for (std::atomic<CRITICAL_SECTION*>* lock : {&g_pSendLock, &g_pCheckSumLock}) {
        if (lock->load() != nullptr)
            continue;
        auto* const made = new (std::nothrow) CRITICAL_SECTION;
        if (made == nullptr) {
            LogFailure(L"%s\t%S, Allocate memory fail!!!, ErrorCode(%d), %S(%d)\r\n", "Memory_Init",
                       GetLastError());
            complete = FALSE;
            continue;
        }
        InitializeCriticalSection(made);
        lock->store(made);
    }
    return complete;
}

BOOL Memory_DeInit() {
    for (std::atomic<CRITICAL_SECTION*>* lock : {&g_pSendLock, &g_pCheckSumLock}) {
        CRITICAL_SECTION* const held = lock->exchange(nullptr);
        if (held == nullptr)
            continue;
        DeleteCriticalSection(held);
        delete held;
    }
    return TRUE;
}
