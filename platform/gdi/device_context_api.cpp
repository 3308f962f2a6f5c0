#include <windows.h>

#include <utility>

#include "platform/gdi/drawing_context.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

HDC CreateCompatibleDC(HDC like) {
    const platform::kernel::ApiCall call("CreateCompatibleDC");
    if (call.Fails())
        return nullptr;
    const auto lock = LockGdi();
    if (like && !FindContext(like))
        return nullptr;
    const HGDIOBJ bitmap = StockBitmap();
    return AddContext({.surface = FindObjectOfKind<Bitmap>(bitmap)->surface,
                       .clip = {0, 0, 1, 1},
                       .bitmap = bitmap});
}

BOOL DeleteDC(HDC dc) {
    const platform::kernel::ApiCall call("DeleteDC");
    if (call.Fails())
        return FALSE;
    const auto lock = LockGdi();
    return RemoveContext(dc, false);
}

int SetBkMode(HDC dc, int mode) {
    const platform::kernel::ApiCall call("SetBkMode");
    if (call.Fails())
        return 0;
    const ContextCall context(dc);
    if (!context)
        return 0;
    if (mode != TRANSPARENT && mode != OPAQUE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return std::exchange(context->background_mode, mode);
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    const platform::kernel::ApiCall call("SetBkColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? std::exchange(context->background_color, color) : CLR_INVALID;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    const platform::kernel::ApiCall call("SetTextColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? std::exchange(context->text_color, color) : CLR_INVALID;
}
