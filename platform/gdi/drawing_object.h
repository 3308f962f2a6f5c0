#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <variant>

#include "platform/gdi/surface.h"

namespace platform::gdi {

// The objects behind HGDIOBJ handles. Guarded by the GDI lock.

// Every bitmap has the 32 bits a pixel of the display.
struct Bitmap {
    std::shared_ptr<Surface> surface;
};

struct Brush {
    COLORREF color = 0;
};

struct Font {
    LOGFONTW description{};
};

struct DrawingObject {
    std::variant<Bitmap, Brush, Font> content;
    bool stock = false;
    // How many device contexts it is selected into.
    int selections = 0;
};

// The functions below are called with the GDI lock held.

HGDIOBJ AddObject(DrawingObject object);

// A new bitmap object with those pixels (0x00RRGGBB, rows from the top; null: black). Null with the
// last error set when there can be no bitmap of that size.
HBITMAP AddBitmap(int width, int height, const std::uint32_t* pixels);

// Null, with the last error set, when the handle is invalid.
std::shared_ptr<DrawingObject> FindObject(HGDIOBJ handle);

// False, with the last error set, when there is none or it is selected into a device context. Does
// not remove a stock object.
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

// The objects that a device context starts with; the bitmap is for memory device contexts.
HGDIOBJ StockBrush();
HGDIOBJ StockFont();
HGDIOBJ StockBitmap();
// Null for an index without a colour.
HGDIOBJ SystemColorBrush(int index);

// A system colour by its index; false when there is none.
bool SystemColor(int index, COLORREF& color);

// Remove every object, stock objects included, and every icon and cursor.
void DropObjects();
void DropIcons();

}  // namespace platform::gdi
