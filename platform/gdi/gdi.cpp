#include "platform/gdi/gdi.h"

#include "platform/gdi/drawing_context.h"
#include "platform/gdi/drawing_object.h"
#include "platform/gdi/text_engine.h"

namespace platform::gdi {

void EndProgram() {
    const auto lock = LockGdi();
    DropContexts();
    DropObjects();
    DropIcons();
}

void Shutdown() {
    EndProgram();
    const auto lock = LockGdi();
    DropTexts();
}

}  // namespace platform::gdi
