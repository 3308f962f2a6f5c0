#include "platform/window/dialog.h"

#include "platform/kernel/api_call.h"
#include "platform/window/creation.h"
#include "platform/window/desktop.h"
#include "platform/window/destruction.h"
#include "platform/window/dialog_template.h"
#include "platform/window/procedure.h"

namespace platform::window {
namespace {

// A template's place counts from its owner's client area, or from the screen.
POINT PlaceOf(const DialogTemplate& dialog, HWND owner) {
    if ((dialog.style & DS_CENTER) != 0)
        return {(kScreenWidth - dialog.width) / 2, (kScreenHeight - dialog.height) / 2};
    POINT place{dialog.x, dialog.y};
    if (owner && (dialog.style & DS_ABSALIGN) == 0)
        ClientToScreen(owner, &place);
    return place;
}

}  // namespace

HWND CreateDialogWindow(HINSTANCE instance, LPCDLGTEMPLATEW resource, HWND owner, DLGPROC procedure,
                        const std::shared_ptr<ModalRun>& run) {
    const auto dialog = ReadDialogTemplate(resource);
    if (!dialog)
        return NULL;
    const POINT place = PlaceOf(*dialog, owner);
    CREATESTRUCTW wanted{};
    wanted.hInstance = instance;
    wanted.hwndParent = owner;
    wanted.x = place.x;
    wanted.y = place.y;
    wanted.cx = dialog->width;
    wanted.cy = dialog->height;
    wanted.style = static_cast<LONG>(dialog->style & ~WS_VISIBLE);
    wanted.dwExStyle = dialog->extended_style;
    wanted.lpszName = dialog->title.c_str();
    wanted.lpszClass = dialog->class_name.empty() ? MAKEINTRESOURCEW(dialog->class_atom)
                                                  : dialog->class_name.c_str();
    const HWND window = CreateTopLevel(wanted);
    if (!window)
        return NULL;

    // A class that has no room for a dialog's values is none for dialogs.
    const int needed = DWLP_USER + static_cast<int>(sizeof(LONG_PTR));
    kernel::KernelLock lock = kernel::LockKernel();
    const auto object = FindWindowObject(lock, window);
    const bool fits = object && object->extra.size() >= static_cast<std::size_t>(needed);
    if (fits)
        object->modal_run = run;
    lock.unlock();
    if (!fits) {
        DestroyOwn(window);
        SetLastError(ERROR_INVALID_PARAMETER);
        return NULL;
    }
    SetWindowLongPtrW(window, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
    return window;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

namespace {

// Messages whose result is what the dialog procedure itself returns.
bool IsAnsweredDirectly(UINT message) {
    switch (message) {
        case WM_INITDIALOG:
        case WM_CHARTOITEM:
        case WM_VKEYTOITEM:
        case WM_COMPAREITEM:
            return true;
        default:
            return message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC;
    }
}

INT_PTR CallDialogProcedure(DLGPROC procedure, HWND dialog, UINT message, WPARAM wparam,
                            LPARAM lparam) {
    const kernel::ProgramCode program_code;
    return procedure(dialog, message, wparam, lparam);
}

}  // namespace

LRESULT DefDlgProcW(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call;
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrW(dialog, DWLP_DLGPROC));
    if (procedure) {
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 0);
        const INT_PTR handled = CallDialogProcedure(procedure, dialog, message, wparam, lparam);
        if (IsAnsweredDirectly(message))
            return handled;
        if (handled)
            return IsWindow(dialog) ? GetWindowLongPtrW(dialog, DWLP_MSGRESULT) : 0;
    }
    if (message != WM_CLOSE)
        return DefWindowProcW(dialog, message, wparam, lparam);
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    return 0;
}
