#pragma once

#include <windows.h>

#include <memory>

#include "platform/window/window.h"

namespace platform::window {

// A dialog's window before WM_INITDIALOG, not visible; NULL with the last error set. `run` is its
// modal run, null for a dialog that is not modal.
HWND CreateDialogWindow(HINSTANCE instance, LPCDLGTEMPLATEW resource, HWND owner, DLGPROC procedure,
                        const std::shared_ptr<ModalRun>& run);

}  // namespace platform::window
