#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <mutex>

#include "platform/gdi/drawing_object.h"
#include "platform/gdi/surface.h"

namespace platform::gdi {

// What a HDC stands for; guarded by the GDI lock.
struct DrawingContext {
    std::shared_ptr<Surface> surface;
    RECT clip{};
    // A window's: told of every drawing. Empty for a memory device context.
    std::function<void()> drawn{};
    bool of_window = false;

    HGDIOBJ bitmap = nullptr;  // null for a window's
    HGDIOBJ brush = nullptr;
    HGDIOBJ font = nullptr;
    COLORREF text_color = RGB(0, 0, 0);
    COLORREF background_color = RGB(255, 255, 255);
    int background_mode = OPAQUE;

    // Where it can draw at all.
    RECT Drawable() const;
};

// The functions below are called with the GDI lock held.

HDC AddContext(DrawingContext context);

// Null, with the last error set, when there is none of that value.
std::shared_ptr<DrawingContext> FindContext(HDC dc);

// Ends one of the kind that is meant; false, with the last error set, when it is none.
bool RemoveContext(HDC dc, bool of_window);

void DropContexts();

// One call of the API on a device context: enters GDI, finds the context, and on its way out, with
// the lock given back, tells the window of what was drawn.
class ContextCall {
  public:
    // When there is no such context, the last error is set and the call finds nothing.
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
