#include <windows.h>

#include <iterator>

#include "platform/gdi/drawing_object.h"
#include "platform/kernel/api_call.h"

namespace platform::gdi {
namespace {

// By index, COLOR_SCROLLBAR first.
constexpr COLORREF kSystemColors[] = {
    RGB(192, 192, 192),  // scroll bar
    RGB(58, 110, 165),   // background
    RGB(10, 36, 106),    // active caption
    RGB(128, 128, 128),  // inactive caption
    RGB(192, 192, 192),  // menu
    RGB(255, 255, 255),  // window
    RGB(0, 0, 0),        // window frame
    RGB(0, 0, 0),        // menu text
    RGB(0, 0, 0),        // window text
    RGB(255, 255, 255),  // caption text
    RGB(192, 192, 192),  // active border
    RGB(192, 192, 192),  // inactive border
    RGB(128, 128, 128),  // application workspace
    RGB(10, 36, 106),    // highlight
    RGB(255, 255, 255),  // highlighted text
    RGB(192, 192, 192),  // button face
    RGB(128, 128, 128),  // button shadow
    RGB(128, 128, 128),  // grey text
    RGB(0, 0, 0),        // button text
    RGB(192, 192, 192),  // inactive caption text
    RGB(255, 255, 255),  // button highlight
    RGB(0, 0, 0),        // dark shadow
    RGB(224, 224, 224),  // light
    RGB(0, 0, 0),        // tool tip text
    RGB(255, 255, 225),  // tool tip background
};
static_assert(std::size(kSystemColors) == (COLOR_INFOBK & ~SYS_COLOR_INDEX_FLAG) + 1);

}  // namespace

bool SystemColor(int index, COLORREF& color) {
    const int plain = index & ~SYS_COLOR_INDEX_FLAG;
    if (plain < 0 || plain >= static_cast<int>(std::size(kSystemColors)))
        return false;
    color = kSystemColors[plain];
    return true;
}

}  // namespace platform::gdi

using namespace platform;

DWORD GetSysColor(int index) {
    COLORREF color = 0;
    if (!gdi::SystemColor(index, color))
        SetLastError(ERROR_INVALID_PARAMETER);
    return color;
}

HBRUSH GetSysColorBrush(int index) {
    const kernel::ApiCall call("GetSysColorBrush");
    if (call.Fails())
        return nullptr;
    const auto lock = gdi::LockGdi();
    const HGDIOBJ brush = gdi::SystemColorBrush(index);
    if (!brush)
        SetLastError(ERROR_INVALID_PARAMETER);
    return static_cast<HBRUSH>(brush);
}
