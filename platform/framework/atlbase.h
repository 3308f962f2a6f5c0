#pragma once

#include <windows.h>

#include <vector>

// The state of a process: its module and the windows that are just being created.
//
// A window is created without a creation parameter, so the object behind it waits here until the
// window procedure receives the first message. Each thread has its own list of waiting objects,
// which the creation functions use.
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

    void AddCreateWndData(void* pObject) { Creations().push_back(pObject); }

    // Removes and returns the latest entry; NULL when there is none.
    void* ExtractCreateWndData() {
        std::vector<void*>& creations = Creations();
        if (creations.empty())
            return nullptr;
        void* const latest = creations.back();
        creations.pop_back();
        return latest;
    }

    // Removes the entry of a window whose creation failed.
    void RemoveCreateWndData(const void* pObject) { std::erase(Creations(), pObject); }

  protected:
    ~CComModule() = default;

  private:
    static std::vector<void*>& Creations() {
        thread_local std::vector<void*> creations;
        return creations;
    }

    HINSTANCE m_hInst = nullptr;
};
