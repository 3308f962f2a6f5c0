#include "platform/gdi/drawing_object.h"

#include <iterator>
#include <map>
#include <string_view>

#include "platform/gdi/device_context.h"
#include "platform/kernel/handle_table.h"

namespace platform::gdi {
namespace {

struct Objects {
    kernel::HandleTable<DrawingObject> table{kernel::kGdiObjects};
    std::map<int, HGDIOBJ> stock;
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

HGDIOBJ MakeStockObject(int index) {
    switch (index) {
        case WHITE_BRUSH:
            return AddStock(Brush{RGB(255, 255, 255)});
        case LTGRAY_BRUSH:
            return AddStock(Brush{RGB(192, 192, 192)});
        case GRAY_BRUSH:
            return AddStock(Brush{RGB(128, 128, 128)});
        case DKGRAY_BRUSH:
            return AddStock(Brush{RGB(64, 64, 64)});
        case BLACK_BRUSH:
            return AddStock(Brush{RGB(0, 0, 0)});
        case NULL_BRUSH:
            return AddStock(Brush{.hollow = true});
        case SYSTEM_FONT:
            return AddStock(SystemFont());
        default:
            return nullptr;
    }
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

DWORD TypeOfObject(HGDIOBJ handle) {
    constexpr DWORD kTypes[] = {OBJ_BITMAP, OBJ_BRUSH, OBJ_FONT};
    static_assert(std::size(kTypes) == std::variant_size_v<decltype(DrawingObject::content)>);
    const auto object = FindObject(handle);
    return object ? kTypes[object->content.index()] : 0;
}

HGDIOBJ StockObject(int index) {
    HGDIOBJ& object = TheObjects().stock[index];
    if (!object)
        object = MakeStockObject(index);
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

}  // namespace platform::gdi
