#include "platform/gdi/gdi.h"

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/drawing_object.h"
#include "platform/gdi/icon.h"
#include "platform/gdi/text_engine.h"

namespace platform::gdi {

void Shutdown() {
    const auto lock = LockGdi();
    DropContexts();
    DropObjects();
    DropIcons();
    DropTexts();
}

}  // namespace platform::gdi
