#include <windows.h>

#include <map>
#include <memory>
#include <utility>

#include "platform/gdi/drawing_object.h"
#include "platform/gdi/gdi.h"
#include "platform/gdi/surface.h"
#include "platform/kernel/api_call.h"
#include "platform/kernel/handle_table.h"
#include "platform/resource/image.h"
#include "platform/resource/module.h"

namespace platform::gdi {
namespace {

// Icons and cursors. The unit shows neither: it has no pointer and no captions.
struct Icon {
    resource::DecodedImage image;
    bool system = false;
};

struct Icons {
    kernel::HandleTable<Icon> table{kernel::kIcons};
    std::map<std::uintptr_t, HICON> cursors;
};

Icons& TheIcons() {
    static Icons icons;
    return icons;
}

HICON AddIcon(Icon icon) {
    return reinterpret_cast<HICON>(
        TheIcons().table.Insert(std::make_shared<Icon>(std::move(icon))));
}

constexpr int kSystemIconSize = 32;

bool IsProgram(HINSTANCE module) {
    if (module == nullptr || module == resource::ModuleInstance())
        return true;
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
}

bool IsSystemCursor(LPCWSTR name) {
    return name == IDC_ARROW || name == IDC_IBEAM || name == IDC_WAIT || name == IDC_CROSS ||
           name == IDC_UPARROW || name == IDC_HAND;
}

HANDLE LoadBitmapImage(LPCWSTR name, int width, int height) {
    const auto image = resource::DecodeBitmap(name);
    if (!image)
        return nullptr;
    const bool stretches =
        (width != 0 && width != image->width) || (height != 0 && height != image->height);
    if (stretches) {
        SetLastError(ERROR_NOT_SUPPORTED);
        return nullptr;
    }
    const auto lock = LockGdi();
    return AddBitmap(image->width, image->height, image->pixels.data());
}

HANDLE LoadIconImage(LPCWSTR name, int width, int height, UINT flags) {
    if (flags & LR_DEFAULTSIZE) {
        width = width == 0 ? kSystemIconSize : width;
        height = height == 0 ? kSystemIconSize : height;
    }
    auto image = resource::DecodeIcon(name, width, height);
    if (!image)
        return nullptr;
    const auto lock = LockGdi();
    return AddIcon({.image = std::move(*image)});
}

}  // namespace

std::size_t IconCount() {
    const auto lock = LockGdi();
    std::size_t count = 0;
    TheIcons().table.ForEach(
        [&](std::uintptr_t, const std::shared_ptr<Icon>& icon) { count += icon->system ? 0 : 1; });
    return count;
}

void DropIcons() {
    TheIcons() = Icons();
}

}  // namespace platform::gdi

using namespace platform;
using namespace platform::gdi;

// Stretched or monochrome bitmaps and files are not supported: ERROR_NOT_SUPPORTED.
HANDLE LoadImageW(HINSTANCE module, LPCWSTR name, UINT type, int width, int height, UINT flags) {
    const kernel::ApiCall call("LoadImageW");
    if (call.Fails())
        return nullptr;
    if (!IsProgram(module))
        return nullptr;
    if (width < 0 || height < 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (type == IMAGE_BITMAP && (flags & ~LR_DEFAULTSIZE) == 0)
        return LoadBitmapImage(name, width, height);
    if (type == IMAGE_ICON && (flags & ~LR_DEFAULTSIZE) == 0)
        return LoadIconImage(name, width, height, flags);
    SetLastError(ERROR_NOT_SUPPORTED);
    return nullptr;
}

// System cursors only; nothing shows them.
HCURSOR LoadCursorW(HINSTANCE module, LPCWSTR name) {
    const kernel::ApiCall call("LoadCursorW");
    if (call.Fails())
        return nullptr;
    if (module != nullptr || !IsSystemCursor(name)) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    const auto lock = LockGdi();
    HCURSOR& cursor = TheIcons().cursors[reinterpret_cast<std::uintptr_t>(name)];
    if (!cursor)
        cursor = AddIcon({.image = {}, .system = true});
    return cursor;
}
