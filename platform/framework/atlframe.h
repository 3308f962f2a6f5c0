#pragma once

#include "atlwin.h"

// A frame's window class. Its name may be set at run time, before the first window is created.
struct CFrameWndClassInfo {
    WNDCLASSW m_wc;
    UINT m_uCommonResourceID;  // of the class's group icon, the frame's title and its accelerators

    // FALSE when the class neither exists nor can be registered. An existing class of that name is
    // used as it is.
    BOOL Register(HINSTANCE hInstance, HINSTANCE hResource) {
        WNDCLASSW existing{};
        if (GetClassInfoW(hInstance, m_wc.lpszClassName, &existing))
            return TRUE;
        m_wc.hInstance = hInstance;
        m_wc.hIcon =
            static_cast<HICON>(LoadImageW(hResource, MAKEINTRESOURCEW(m_uCommonResourceID),
                                          IMAGE_ICON, kIconSize, kIconSize, LR_DEFAULTCOLOR));
        m_wc.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        return RegisterClassW(&m_wc) != 0;
    }

  private:
    static constexpr int kIconSize = 32;
};

#define DECLARE_FRAME_WND_CLASS(WndClassName, uCommonResourceID)                         \
  public:                                                                                \
    static CFrameWndClassInfo& GetWndClassInfo() {                                       \
        static CFrameWndClassInfo info =                                                 \
            MakeFrameWndClassInfo((WndClassName), (uCommonResourceID), StartWindowProc); \
        return info;                                                                     \
    }

inline CFrameWndClassInfo MakeFrameWndClassInfo(LPCWSTR lpszName, UINT uCommonResourceID,
                                                WNDPROC pfnStart) {
    CFrameWndClassInfo info{};
    info.m_wc.lpfnWndProc = pfnStart;
    info.m_wc.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1});
    info.m_wc.lpszClassName = lpszName;
    info.m_uCommonResourceID = uCommonResourceID;
    return info;
}

using CFrameWinTraits = CWinTraits<WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0>;

// A top-level window without a menu, with its class from T's DECLARE_FRAME_WND_CLASS.
template <typename T, typename TWinTraits = CFrameWinTraits>
class CFrameWindowImpl : public CWindowImplBase {
  public:
    // Creates the window, titled by the common resource's string, at the platform's default place;
    // not visible yet. NULL when the class or the window cannot be made.
    HWND CreateEx(HWND hWndParent = nullptr) {
        CFrameWndClassInfo& info = T::GetWndClassInfo();
        const HINSTANCE module = _Module.GetModuleInstance();
        const HINSTANCE resources = _Module.GetResourceInstance();
        if (!info.Register(module, resources))
            return nullptr;

        WCHAR title[kMaxTitle] = {};
        LoadStringW(resources, info.m_uCommonResourceID, title, kMaxTitle);

        const CreationScope scope(static_cast<CWindowImplBase*>(this));
        const HWND created = CreateWindowExW(
            TWinTraits::kExStyle, info.m_wc.lpszClassName, title, TWinTraits::kStyle, CW_USEDEFAULT,
            CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, hWndParent, nullptr, module, nullptr);
        if (created != nullptr)
            m_hAccel = LoadAcceleratorsW(resources, MAKEINTRESOURCEW(info.m_uCommonResourceID));
        return created;
    }

    // For a message filter of the derived class: TRUE when the message was an accelerator.
    BOOL PreTranslateMessage(MSG* pMsg) {
        return m_hAccel != nullptr && TranslateAcceleratorW(m_hWnd, m_hAccel, pMsg) != 0;
    }

    // What a frame does unless the derived class's map has handled the message before.
    BEGIN_MSG_MAP(CFrameWindowImpl)
        MESSAGE_HANDLER(WM_DESTROY, OnDestroyFrame)
    END_MSG_MAP()

    HACCEL m_hAccel = nullptr;  // NULL when the resources hold no table

  private:
    static constexpr int kMaxTitle = 256;

    // A frame that does not look after its end itself still ends its thread's message loop.
    LRESULT OnDestroyFrame(UINT, WPARAM, LPARAM, BOOL& bHandled) {
        PostQuitMessage(0);
        bHandled = FALSE;
        return 0;
    }
};

// The state of menu and tool-bar commands. The only map that can be written is one without entries,
// for a frame that has no menu; it leaves every message alone.
class CUpdateUIBase {
  public:
    struct MapEntry {
        WORD m_nID;
        WORD m_wType;
    };
    static constexpr MapEntry kEndOfMap = {0xFFFF, 0};

    static BOOL ProcessWindowMessage(HWND, UINT, WPARAM, LPARAM, LRESULT&) { return FALSE; }

  protected:
    CUpdateUIBase() = default;
    ~CUpdateUIBase() = default;
};

template <typename T>
class CUpdateUI : public CUpdateUIBase {};

#define BEGIN_UPDATE_UI_MAP(theClass)         \
  public:                                     \
    static const MapEntry* GetUpdateUIMap() { \
        static constexpr MapEntry kMap[] = {
#define END_UPDATE_UI_MAP() \
    kEndOfMap               \
    }                       \
    ;                       \
    return kMap;            \
    }
