#pragma once

#include <windows.h>

#include <utility>

// Owners of what a painting borrows from GDI. Each may hold nothing after a failed call; GDI
// refuses the null handle and the painting goes on.

// A bitmap, brush or font, deleted with its owner.
template <typename Handle>
class GdiObject {
  public:
    explicit GdiObject(Handle handle = nullptr) : handle_(handle) {}
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    ~GdiObject() { Delete(); }

    Handle Get() const { return handle_; }

    // Deletes what it held before.
    void Reset(Handle handle) {
        Delete();
        handle_ = handle;
    }

    Handle Release() { return std::exchange(handle_, Handle{}); }

    // FALSE when the deletion failed; an empty owner has nothing to delete, which is a success.
    BOOL Delete() {
        const Handle handle = Release();
        return handle == nullptr || DeleteObject(handle);
    }

  private:
    Handle handle_;
};

// A memory device context compatible with another one.
class MemoryDC {
  public:
    explicit MemoryDC(HDC like) : handle_(CreateCompatibleDC(like)) {}
    MemoryDC(const MemoryDC&) = delete;
    MemoryDC& operator=(const MemoryDC&) = delete;
    ~MemoryDC() { Delete(); }

    HDC Get() const { return handle_; }

    // FALSE when the deletion failed; without a context a success.
    BOOL Delete() {
        const HDC handle = std::exchange(handle_, HDC{});
        return handle == nullptr || DeleteDC(handle);
    }

  private:
    HDC handle_;
};

// An object selected into a device context while the scope lasts. A null object selects nothing.
class SelectScope {
  public:
    SelectScope(HDC dc, HGDIOBJ object)
        : dc_(dc), displaced_(object == nullptr ? nullptr : SelectObject(dc, object)) {}
    SelectScope(const SelectScope&) = delete;
    SelectScope& operator=(const SelectScope&) = delete;
    ~SelectScope() {
        if (displaced_ != nullptr)
            SelectObject(dc_, displaced_);
    }

    bool IsSelected() const { return displaced_ != nullptr; }

  private:
    HDC dc_;
    HGDIOBJ displaced_;
};

// The device context of a window's client area, outside WM_PAINT.
class ClientDC {
  public:
    explicit ClientDC(HWND window) : window_(window), handle_(GetDC(window)) {}
    ClientDC(const ClientDC&) = delete;
    ClientDC& operator=(const ClientDC&) = delete;
    ~ClientDC() {
        if (handle_ != nullptr)
            ReleaseDC(window_, handle_);
    }

    HDC Get() const { return handle_; }

  private:
    HWND window_;
    HDC handle_;
};

// BeginPaint to EndPaint.
class PaintDC {
  public:
    explicit PaintDC(HWND window) : window_(window), handle_(BeginPaint(window, &paint_)) {}
    PaintDC(const PaintDC&) = delete;
    PaintDC& operator=(const PaintDC&) = delete;
    ~PaintDC() { EndPaint(window_, &paint_); }

    HDC Get() const { return handle_; }

  private:
    HWND window_;
    PAINTSTRUCT paint_{};
    HDC handle_;
};
