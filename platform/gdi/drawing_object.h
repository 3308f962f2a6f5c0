#pragma once

#include <windows.h>

#include <cstddef>
#include <memory>
#include <variant>

#include "platform/gdi/surface.h"

namespace platform::gdi {

// What a HGDIOBJ stands for. All of it is guarded by the GDI lock.

// Every bitmap has the 32 bits a pixel of the display.
struct Bitmap {
    std::shared_ptr<Surface> surface;
};

struct Brush {
    COLORREF color = 0;
    bool hollow = false;
};

struct Font {
    LOGFONTW description{};
};

struct DrawingObject {
    std::variant<Bitmap, Brush, Font> content;
    bool stock = false;
    // Device contexts it is selected into.
    int selections = 0;
};

// The functions below are called with the GDI lock held.

HGDIOBJ AddObject(DrawingObject object);

// Null, with the last error set, when there is none of that value.
std::shared_ptr<DrawingObject> FindObject(HGDIOBJ handle);

// False, with the last error set, when there is none or it is selected into a device context. A
// stock object stays.
bool RemoveObject(HGDIOBJ handle);

// FindObject for one kind of object.
template <class Kind>
std::shared_ptr<Kind> FindObjectOfKind(HGDIOBJ handle) {
    const std::shared_ptr<DrawingObject> object = FindObject(handle);
    if (!object)
        return nullptr;
    if (Kind* content = std::get_if<Kind>(&object->content))
        return {object, content};
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

// What GetObjectType answers, or 0 with the last error set.
DWORD TypeOfObject(HGDIOBJ handle);

// Null for an index that is not supported.
HGDIOBJ StockObject(int index);
// The bitmap that a memory device context starts with.
HGDIOBJ StockBitmap();
// Null for an index without a colour.
HGDIOBJ SystemColorBrush(int index);

// A system colour by its index; false when there is none.
bool SystemColor(int index, COLORREF& color);

// Forgets every object, and gives up the stock objects.
void DropObjects();

}  // namespace platform::gdi
