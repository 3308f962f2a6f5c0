#include "platform/gdi/drawing_object.h"

#include "platform/gdi/gdi.h"

#include <windows.h>

#include <iterator>
#include <map>
#include <string_view>

#include "platform/kernel/api_call.h"
#include "platform/kernel/handle_table.h"

namespace platform::gdi {
namespace {

struct Objects {
    kernel::HandleTable<DrawingObject> table{kernel::kGdiObjects};
    HGDIOBJ brush = nullptr;
    HGDIOBJ font = nullptr;
    std::map<int, HGDIOBJ> system_brushes;
    HGDIOBJ bitmap = nullptr;
};

Objects& TheObjects() {
    static Objects objects;
    return objects;
}

HGDIOBJ AddStock(decltype(DrawingObject::content) content) {
    return AddObject({.content = std::move(content), .stock = true});
}

Font SystemFont() {
    constexpr std::wstring_view kFace = L"System";
    Font font;
    font.description.lfHeight = 16;
    font.description.lfWeight = FW_BOLD;
    kFace.copy(font.description.lfFaceName, kFace.size());
    return font;
}

}  // namespace

HGDIOBJ AddObject(DrawingObject object) {
    return reinterpret_cast<HGDIOBJ>(
        TheObjects().table.Insert(std::make_shared<DrawingObject>(std::move(object))));
}

std::shared_ptr<DrawingObject> FindObject(HGDIOBJ handle) {
    auto object = TheObjects().table.Find(reinterpret_cast<std::uintptr_t>(handle));
    if (!object)
        SetLastError(ERROR_INVALID_HANDLE);
    return object;
}

bool RemoveObject(HGDIOBJ handle) {
    const auto object = FindObject(handle);
    if (!object)
        return false;
    if (object->stock)
        return true;
    if (object->selections != 0) {
        SetLastError(ERROR_BUSY);
        return false;
    }
    TheObjects().table.Remove(reinterpret_cast<std::uintptr_t>(handle));
    return true;
}

HGDIOBJ StockBrush() {
    HGDIOBJ& object = TheObjects().brush;
    if (!object)
        object = AddStock(Brush{RGB(255, 255, 255)});
    return object;
}

HGDIOBJ StockFont() {
    HGDIOBJ& object = TheObjects().font;
    if (!object)
        object = AddStock(SystemFont());
    return object;
}

HGDIOBJ StockBitmap() {
    HGDIOBJ& object = TheObjects().bitmap;
    if (!object)
        object = AddStock(Bitmap{std::make_shared<Surface>(1, 1)});
    return object;
}

HGDIOBJ SystemColorBrush(int index) {
    COLORREF color = 0;
    if (!SystemColor(index, color))
        return nullptr;
    HGDIOBJ& object = TheObjects().system_brushes[index & ~SYS_COLOR_INDEX_FLAG];
    if (!object)
        object = AddStock(Brush{color});
    return object;
}

void DropObjects() {
    TheObjects() = Objects();
}

std::size_t DrawingObjectCount() {
    const auto lock = LockGdi();
    std::size_t count = 0;
    TheObjects().table.ForEach([&](std::uintptr_t, const std::shared_ptr<DrawingObject>& object) {
        count += object->stock ? 0 : 1;
    });
    return count;
}

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
