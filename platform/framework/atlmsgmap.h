#pragma once

#include <windows.h>

// Whatever has a message map.
class CMessageMap {
  public:
    // TRUE when the map handled the message, with its result in lResult.
    virtual BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam,
                                      LRESULT& lResult) = 0;

  protected:
    ~CMessageMap() = default;
};

// A map is a list of entries tried from the top. An entry's handler may set bHandled to FALSE, and
// the entries after it are tried too.
#define BEGIN_MSG_MAP(theClass)                                                               \
  public:                                                                                     \
    BOOL ProcessWindowMessage([[maybe_unused]] HWND hWnd, [[maybe_unused]] UINT uMsg,         \
                              [[maybe_unused]] WPARAM wParam, [[maybe_unused]] LPARAM lParam, \
                              [[maybe_unused]] LRESULT& lResult) override {                   \
        [[maybe_unused]] BOOL bHandled = TRUE;

// LRESULT func(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled); msg may be a variable.
#define MESSAGE_HANDLER(msg, func)                      \
    if (uMsg == (msg)) {                                \
        bHandled = TRUE;                                \
        lResult = func(uMsg, wParam, lParam, bHandled); \
        if (bHandled)                                   \
            return TRUE;                                \
    }

// LRESULT func(WORD wNotifyCode, WORD wID, HWND hWndCtl, BOOL& bHandled)
#define COMMAND_ID_HANDLER(id, func)                                                              \
    if (uMsg == WM_COMMAND && LOWORD(wParam) == (id)) {                                           \
        bHandled = TRUE;                                                                          \
        lResult = func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled); \
        if (bHandled)                                                                             \
            return TRUE;                                                                          \
    }

#define CHAIN_MSG_MAP(theChainClass)                                              \
    if (theChainClass::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult)) \
        return TRUE;

#define END_MSG_MAP() \
    return FALSE;     \
    }
