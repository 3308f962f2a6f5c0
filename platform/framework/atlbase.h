#pragma once

#include <windows.h>

#include <vector>

// What a process has once: its module and the windows that are just being created.
//
// A window is created without a creation parameter of its own, so the object behind it waits here
// until the window procedure sees the first message. Each thread has a waiting list of its own;
// the creation functions touch the calling thread's.
class CComModule {
  public:
    CComModule() = default;
    CComModule(const CComModule&) = delete;
    CComModule& operator=(const CComModule&) = delete;

    // The module that classes are registered in and resources come from. Always S_OK.
    HRESULT Init(HINSTANCE hInstance) {
        m_hInst = hInstance;
        return S_OK;
    }

    void Term() { m_hInst = nullptr; }

    HINSTANCE GetModuleInstance() const { return m_hInst; }
    HINSTANCE GetResourceInstance() const { return m_hInst; }

    void AddCreateWndData(void* pObject) { t_creations.push_back(pObject); }

    // Takes the latest entry; NULL when there is none.
    void* ExtractCreateWndData() {
        if (t_creations.empty())
            return nullptr;
        void* const latest = t_creations.back();
        t_creations.pop_back();
        return latest;
    }

    // Takes back the entry of a window that never came to life.
    void RemoveCreateWndData(const void* pObject) { std::erase(t_creations, pObject); }

  protected:
    ~CComModule() = default;

  private:
    HINSTANCE m_hInst = nullptr;
    static inline thread_local std::vector<void*> t_creations;
};
