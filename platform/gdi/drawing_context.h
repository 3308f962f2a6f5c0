#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <mutex>

#include "platform/gdi/drawing_object.h"
#include "platform/gdi/surface.h"

namespace platform::gdi {

// The object behind an HDC; guarded by the GDI lock.
struct DrawingContext {
    std::shared_ptr<Surface> surface;
    RECT clip{};
    // A window's: called after every drawing. Empty for a memory device context.
    std::function<void()> drawn{};
    bool of_window = false;

    HGDIOBJ bitmap = nullptr;  // null for a window's
    HGDIOBJ brush = nullptr;
    HGDIOBJ font = nullptr;
    COLORREF text_color = RGB(0, 0, 0);
    int background_mode = OPAQUE;

    // The part of the surface that it can draw on.
    RECT Drawable() const;
};

// The functions below are called with the GDI lock held.

HDC AddContext(DrawingContext context);

// Fills the visible part of a rectangle.
void Fill(DrawingContext& context, const RECT& rectangle, std::uint32_t pixel);

// Null, with the last error set, when the handle is invalid.
std::shared_ptr<DrawingContext> FindContext(HDC dc);

// Ends a window's or a memory device context; false, with the last error set, when it is none.
bool RemoveContext(HDC dc, bool of_window);

void DropContexts();

// One call of the API on a device context: takes the GDI lock, finds the context, and at its end,
// without the lock, reports the drawing to the window.
class ContextCall {
  public:
    // Sets the last error when there is no such context.
    explicit ContextCall(HDC dc);
    ~ContextCall();
    ContextCall(const ContextCall&) = delete;
    ContextCall& operator=(const ContextCall&) = delete;

    explicit operator bool() const { return context_ != nullptr; }
    DrawingContext* operator->() const { return context_.get(); }
    DrawingContext& operator*() const { return *context_; }

    void Drawn() { drawn_ = true; }

  private:
    std::unique_lock<std::mutex> lock_;
    std::shared_ptr<DrawingContext> context_;
    bool drawn_ = false;
};

}  // namespace platform::gdi
