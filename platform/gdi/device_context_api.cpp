#include <windows.h>

#include <utility>

#include "platform/gdi/drawing_context.h"
#include "platform/kernel/api_call.h"

using namespace platform::gdi;

namespace {

// The display, of which every device context here is one.
int DeviceCapability(int index) {
    switch (index) {
        case TECHNOLOGY:
            return DT_RASDISPLAY;
        case HORZRES:
            return 800;
        case VERTRES:
            return 480;
        case HORZSIZE:  // in millimetres, at 96 pixels an inch
            return 212;
        case VERTSIZE:
            return 127;
        case BITSPIXEL:
            return 32;
        case PLANES:
            return 1;
        case NUMCOLORS:  // too many to count
            return -1;
        case LOGPIXELSX:
        case LOGPIXELSY:
            return 96;
        default:
            return 0;
    }
}

}  // namespace

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

int GetDeviceCaps(HDC dc, int index) {
    const platform::kernel::ApiCall call("GetDeviceCaps");
    if (call.Fails())
        return 0;
    const ContextCall context(dc);
    return context ? DeviceCapability(index) : 0;
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

int GetBkMode(HDC dc) {
    const platform::kernel::ApiCall call("GetBkMode");
    if (call.Fails())
        return 0;
    const ContextCall context(dc);
    return context ? context->background_mode : 0;
}

COLORREF SetBkColor(HDC dc, COLORREF color) {
    const platform::kernel::ApiCall call("SetBkColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? std::exchange(context->background_color, color) : CLR_INVALID;
}

COLORREF GetBkColor(HDC dc) {
    const platform::kernel::ApiCall call("GetBkColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? context->background_color : CLR_INVALID;
}

COLORREF SetTextColor(HDC dc, COLORREF color) {
    const platform::kernel::ApiCall call("SetTextColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? std::exchange(context->text_color, color) : CLR_INVALID;
}

COLORREF GetTextColor(HDC dc) {
    const platform::kernel::ApiCall call("GetTextColor");
    if (call.Fails())
        return CLR_INVALID;
    const ContextCall context(dc);
    return context ? context->text_color : CLR_INVALID;
}
