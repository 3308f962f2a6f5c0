#pragma once

#include <utility>

#include "atlbase.h"

// Interfaces of a message loop's filters and idle handlers. The loop calls neither: the program
// adds none.
class CMessageFilter {
  public:
    virtual BOOL PreTranslateMessage(MSG* pMsg) = 0;

  protected:
    ~CMessageFilter() = default;
};

class CIdleHandler {
  public:
    virtual BOOL OnIdle() = 0;

  protected:
    ~CIdleHandler() = default;
};

// The message loop of one thread.
class CMessageLoop {
  public:
    // Handles the calling thread's messages until WM_QUIT, whose exit code it returns.
    int Run() {
        MSG msg{};
        for (;;) {
            const BOOL got = GetMessageW(&msg, nullptr, 0, 0);
            if (got == -1)
                continue;
            if (got == 0)
                return static_cast<int>(msg.wParam);
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }
};

// The module of a windowed program: knows the message loop of each thread that has one.
class CAppModule : public CComModule {
  public:
    // Forgets the module and the calling thread's loop.
    void Term() {
        CurrentLoop() = nullptr;
        CComModule::Term();
    }

    // Registers the calling thread's loop; FALSE when the thread has one already. Not owned.
    BOOL AddMessageLoop(CMessageLoop* pLoop) {
        if (CurrentLoop() != nullptr)
            return FALSE;
        CurrentLoop() = pLoop;
        return TRUE;
    }

    BOOL RemoveMessageLoop() { return std::exchange(CurrentLoop(), nullptr) != nullptr; }

  private:
    static CMessageLoop*& CurrentLoop() {
        thread_local CMessageLoop* loop = nullptr;
        return loop;
    }
};

// Defined once by the program; the framework's windows find their module through it.
extern CAppModule _Module;
