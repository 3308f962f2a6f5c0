#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "atlapp.h"
#include "atlmsgmap.h"

// A window handle, not owned. Use the API's functions on m_hWnd.
class CWindow {
  public:
    explicit CWindow(HWND hWnd = nullptr) : m_hWnd(hWnd) {}

    operator HWND() const { return m_hWnd; }

    HWND m_hWnd;
};

template <DWORD t_dwStyle, DWORD t_dwExStyle>
struct CWinTraits {
    static constexpr DWORD kStyle = t_dwStyle;
    static constexpr DWORD kExStyle = t_dwExStyle;
};

// An object with a message map behind a window. All of it runs on the window's thread.
class CWindowImplRoot : public CWindow, public CMessageMap {
  public:
    CWindowImplRoot(const CWindowImplRoot&) = delete;
    CWindowImplRoot& operator=(const CWindowImplRoot&) = delete;

    // A window that outlives its object gets the default processing.
    virtual ~CWindowImplRoot() {
        if (m_hWnd != nullptr)
            Forget();
    }

  protected:
    CWindowImplRoot() = default;

    // The object of type TImpl behind the window; at the window's first message the object that
    // waits for a window on this thread. NULL when the window has none.
    template <typename TImpl>
    static TImpl* FromWindow(HWND hWnd) {
        const auto place = Find(hWnd);
        if (place != Objects().end() && place->window == hWnd)
            return static_cast<TImpl*>(place->object);
        auto* const impl = static_cast<TImpl*>(_Module.ExtractCreateWndData());
        if (impl != nullptr) {
            impl->m_hWnd = hWnd;
            Objects().insert(place, {hWnd, impl});
        }
        return impl;
    }

    // The object waits for its window within this scope.
    class CreationScope {
      public:
        explicit CreationScope(void* object) : object_(object) { _Module.AddCreateWndData(object); }
        CreationScope(const CreationScope&) = delete;
        CreationScope& operator=(const CreationScope&) = delete;
        ~CreationScope() { _Module.RemoveCreateWndData(object_); }

      private:
        void* object_;
    };

    void EnterMessage() { ++m_nesting; }

    // TRUE when the window is destroyed and none of its messages is being handled any more; the
    // object no longer refers to the window then.
    bool LeaveMessage(UINT uMsg) {
        m_destroyed = m_destroyed || uMsg == WM_NCDESTROY;
        if (--m_nesting != 0 || !m_destroyed)
            return false;
        Forget();
        m_hWnd = nullptr;
        m_destroyed = false;
        return true;
    }

  private:
    struct Entry {
        HWND window;
        void* object;
    };

    // The objects behind the thread's windows, sorted by window. Not kept in the windows: a message
    // must find its object even while calls of the system fail.
    static std::vector<Entry>& Objects() {
        thread_local std::vector<Entry> objects;
        return objects;
    }

    // The entry of a window, or where it belongs.
    static std::vector<Entry>::iterator Find(HWND hWnd) {
        return std::ranges::lower_bound(Objects(), hWnd, std::less<HWND>{}, &Entry::window);
    }

    void Forget() {
        const auto entry = Find(m_hWnd);
        if (entry != Objects().end() && entry->window == m_hWnd)
            Objects().erase(entry);
    }

    int m_nesting = 0;
    bool m_destroyed = false;
};

class CWindowImplBase : public CWindowImplRoot {
  public:
    // Receives every message of the window.
    virtual WNDPROC GetWindowProc() { return WindowProc; }

    // The last call for a window; the object may delete itself here.
    virtual void OnFinalMessage(HWND) {}

    // The procedure to register classes with.
    static LRESULT CALLBACK StartWindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* const self = FromWindow<CWindowImplBase>(hWnd);
        if (self == nullptr)
            return DefWindowProcW(hWnd, uMsg, wParam, lParam);
        return self->GetWindowProc()(hWnd, uMsg, wParam, lParam);
    }

  protected:
    static LRESULT CALLBACK WindowProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* const self = FromWindow<CWindowImplBase>(hWnd);
        LRESULT result = 0;
        self->EnterMessage();
        if (!self->ProcessWindowMessage(hWnd, uMsg, wParam, lParam, result))
            result = DefWindowProcW(hWnd, uMsg, wParam, lParam);
        if (self->LeaveMessage(uMsg))
            self->OnFinalMessage(hWnd);
        return result;
    }
};

class CDialogImplBase : public CWindowImplRoot {
  public:
    virtual DLGPROC GetDialogProc() { return DialogProc; }
    virtual void OnFinalMessage(HWND) {}

    static INT_PTR CALLBACK StartDialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* const self = FromWindow<CDialogImplBase>(hWnd);
        return self == nullptr ? FALSE : self->GetDialogProc()(hWnd, uMsg, wParam, lParam);
    }

    // Ends a modal run; DoModal then returns nResult.
    BOOL EndDialog(int nResult) { return ::EndDialog(m_hWnd, nResult); }

  protected:
    static INT_PTR CALLBACK DialogProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
        auto* const self = FromWindow<CDialogImplBase>(hWnd);
        LRESULT result = 0;
        self->EnterMessage();
        const BOOL handled = self->ProcessWindowMessage(hWnd, uMsg, wParam, lParam, result);
        if (handled && !ReturnsDirectly(uMsg))
            SetWindowLongPtrW(hWnd, DWLP_MSGRESULT, result);
        if (self->LeaveMessage(uMsg))
            self->OnFinalMessage(hWnd);
        if (!handled)
            return FALSE;
        return ReturnsDirectly(uMsg) ? static_cast<INT_PTR>(result) : TRUE;
    }

  private:
    // Messages whose result is the dialog procedure's own return value (DialogProc).
    static constexpr bool ReturnsDirectly(UINT uMsg) {
        switch (uMsg) {
            case WM_INITDIALOG:
            case WM_CHARTOITEM:
            case WM_VKEYTOITEM:
            case WM_COMPAREITEM:
            case WM_CTLCOLORMSGBOX:
            case WM_CTLCOLOREDIT:
            case WM_CTLCOLORLISTBOX:
            case WM_CTLCOLORBTN:
            case WM_CTLCOLORDLG:
            case WM_CTLCOLORSCROLLBAR:
            case WM_CTLCOLORSTATIC:
                return true;
            default:
                return false;
        }
    }
};

// A dialog from the program's template T::IDD.
template <typename T>
class CDialogImpl : public CDialogImplBase {
  public:
    // Runs the dialog modally and returns what it ends with; -1 when the template is missing or the
    // dialog cannot be started.
    int DoModal(HWND hWndParent = GetActiveWindow(), LPARAM dwInitParam = 0) {
        const HINSTANCE module = _Module.GetResourceInstance();
        const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(T::IDD), RT_DIALOG);
        if (found == nullptr)
            return -1;
        const HGLOBAL loaded = LoadResource(module, found);
        const auto* const dialog_template =
            static_cast<LPCDLGTEMPLATEW>(loaded == nullptr ? nullptr : LockResource(loaded));
        if (dialog_template == nullptr)
            return -1;
        const CreationScope scope(static_cast<CDialogImplBase*>(this));
        return static_cast<int>(DialogBoxIndirectParamW(module, dialog_template, hWndParent,
                                                        StartDialogProc, dwInitParam));
    }
};
