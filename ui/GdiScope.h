#pragma once

#include <windows.h>

#include <utility>

// Owners of GDI handles for the length of a scope. After a failed call an owner is empty; GDI
// refuses its null handle and the painting goes on.

// A bitmap, brush or font.
template <typename Handle>
class GdiObject {
  public:
    explicit GdiObject(Handle handle = nullptr) : m_hObject(handle) {}
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    ~GdiObject() { Delete(); }

    Handle Get() const { return m_hObject; }

    // Deletes what it held before.
    void Reset(Handle handle) {
        Delete();
        m_hObject = handle;
    }

    Handle Release() { return std::exchange(m_hObject, Handle{}); }

    // FALSE when the deletion failed; an empty owner has nothing to delete, which is a success.
    BOOL Delete() {
        const Handle handle = Release();
        return handle == nullptr || DeleteObject(handle);
    }

  private:
    Handle m_hObject;
};

// A memory device context compatible with another one.
class MemoryDC {
  public:
    explicit MemoryDC(HDC like) : m_hDC(CreateCompatibleDC(like)) {}
    MemoryDC(const MemoryDC&) = delete;
    MemoryDC& operator=(const MemoryDC&) = delete;
    ~MemoryDC() { Delete(); }

    HDC Get() const { return m_hDC; }

    // FALSE when the deletion failed; without a context a success.
    BOOL Delete() {
        const HDC handle = std::exchange(m_hDC, HDC{});
        return handle == nullptr || DeleteDC(handle);
    }

  private:
    HDC m_hDC;
};

// Selects an object into a device context. A null object selects nothing.
class SelectScope {
  public:
    SelectScope(HDC dc, HGDIOBJ object)
        : m_hDC(dc), m_hDisplaced(object == nullptr ? nullptr : SelectObject(dc, object)) {}
    SelectScope(const SelectScope&) = delete;
    SelectScope& operator=(const SelectScope&) = delete;
    ~SelectScope() {
        if (m_hDisplaced != nullptr)
            SelectObject(m_hDC, m_hDisplaced);
    }

    bool IsSelected() const { return m_hDisplaced != nullptr; }

  private:
    HDC m_hDC;
    HGDIOBJ m_hDisplaced;
};

// The device context of a window's client area, outside WM_PAINT.
class ClientDC {
  public:
    explicit ClientDC(HWND window) : m_hWnd(window), m_hDC(GetDC(window)) {}
    ClientDC(const ClientDC&) = delete;
    ClientDC& operator=(const ClientDC&) = delete;
    ~ClientDC() {
        if (m_hDC != nullptr)
            ReleaseDC(m_hWnd, m_hDC);
    }

    HDC Get() const { return m_hDC; }

  private:
    HWND m_hWnd;
    HDC m_hDC;
};

// BeginPaint to EndPaint.
class PaintDC {
  public:
    explicit PaintDC(HWND window) : m_hWnd(window), m_hDC(BeginPaint(window, &m_Paint)) {}
    PaintDC(const PaintDC&) = delete;
    PaintDC& operator=(const PaintDC&) = delete;
    ~PaintDC() { EndPaint(m_hWnd, &m_Paint); }

    HDC Get() const { return m_hDC; }

  private:
    HWND m_hWnd;
    PAINTSTRUCT m_Paint{};
    HDC m_hDC;
};
