#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "atlbase.h"

// Sees every message of a loop before it is translated; TRUE means that it needs no more handling.
class CMessageFilter {
  public:
    virtual BOOL PreTranslateMessage(MSG* pMsg) = 0;

  protected:
    ~CMessageFilter() = default;
};

// Called while a loop has no message waiting.
class CIdleHandler {
  public:
    virtual BOOL OnIdle() = 0;

  protected:
    ~CIdleHandler() = default;
};

// The message loop of one thread; filters and idle handlers are not owned.
class CMessageLoop {
  public:
    BOOL AddMessageFilter(CMessageFilter* pFilter) { return AddTo(m_filters, pFilter); }
    BOOL RemoveMessageFilter(CMessageFilter* pFilter) { return RemoveFrom(m_filters, pFilter); }
    BOOL AddIdleHandler(CIdleHandler* pHandler) { return AddTo(m_idle_handlers, pHandler); }
    BOOL RemoveIdleHandler(CIdleHandler* pHandler) { return RemoveFrom(m_idle_handlers, pHandler); }

    // Handles the calling thread's messages until WM_QUIT, whose exit code it returns.
    int Run() {
        MSG msg{};
        for (;;) {
            IdleUntilMessage();
            const BOOL got = GetMessageW(&msg, nullptr, 0, 0);
            if (got == -1)
                continue;
            if (got == 0)
                return static_cast<int>(msg.wParam);
            if (PreTranslateMessage(&msg))
                continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }

  private:
    template <typename T>
    static BOOL AddTo(std::vector<T*>& list, T* entry) {
        if (entry == nullptr)
            return FALSE;
        list.push_back(entry);
        return TRUE;
    }

    template <typename T>
    static BOOL RemoveFrom(std::vector<T*>& list, T* entry) {
        return std::erase(list, entry) != 0;
    }

    // The filter added last is asked first.
    BOOL PreTranslateMessage(MSG* pMsg) {
        return std::any_of(m_filters.rbegin(), m_filters.rend(), [pMsg](CMessageFilter* filter) {
            return filter->PreTranslateMessage(pMsg) != FALSE;
        });
    }

    // One idle round for each time that the queue runs empty.
    void IdleUntilMessage() {
        MSG waiting{};
        if (m_idle_handlers.empty() || PeekMessageW(&waiting, nullptr, 0, 0, PM_NOREMOVE))
            return;
        for (CIdleHandler* handler : m_idle_handlers)
            handler->OnIdle();
    }

    std::vector<CMessageFilter*> m_filters;
    std::vector<CIdleHandler*> m_idle_handlers;
};

// The module of a windowed program: knows the message loop of each thread that has one.
class CAppModule : public CComModule {
  public:
    // Forgets the module and the calling thread's loop.
    void Term() {
        t_pLoop = nullptr;
        CComModule::Term();
    }

    // Enters the loop as the calling thread's; FALSE when the thread has one already. Not owned.
    BOOL AddMessageLoop(CMessageLoop* pLoop) {
        if (t_pLoop != nullptr)
            return FALSE;
        t_pLoop = pLoop;
        return TRUE;
    }

    BOOL RemoveMessageLoop() { return std::exchange(t_pLoop, nullptr) != nullptr; }

    // The calling thread's loop, NULL when it has none.
    CMessageLoop* GetMessageLoop() const { return t_pLoop; }

  private:
    static inline thread_local CMessageLoop* t_pLoop = nullptr;
};

// Defined once by the program; the framework's windows find their module through it.
extern CAppModule _Module;
