#include <cstring>
#include <utility>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/activation.h"
#include "platform/window/class_registry.h"
#include "platform/window/desktop.h"
#include "platform/window/dialog_template.h"
#include "platform/window/lifetime.h"
#include "platform/window/procedure.h"
#include "platform/window/retrieval.h"

namespace platform::window {
namespace {

// A template's place counts from its owner's client area, or from the screen.
POINT PlaceOf(const DialogTemplate& dialog, HWND owner) {
    if ((dialog.style & DS_CENTER) != 0)
        return {(kScreenWidth - dialog.width) / 2, (kScreenHeight - dialog.height) / 2};
    RECT base{};
    if (owner && (dialog.style & DS_ABSALIGN) == 0)
        GetWindowRect(owner, &base);
    return {base.left + dialog.x, base.top + dialog.y};
}

// A dialog's window before WM_INITDIALOG, not visible; NULL with the last error set.
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

    // A class without extra bytes for a dialog's values cannot serve a dialog.
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

// A value among the window's extra bytes (DWLP_...); 0 when the window is gone.
LONG_PTR ExtraValue(HWND handle, int index) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window = FindWindowObject(lock, handle);
    LONG_PTR value = 0;
    if (window && std::size_t(index) + sizeof value <= window->extra.size())
        std::memcpy(&value, window->extra.data() + index, sizeof value);
    return value;
}

// Messages whose result is the dialog procedure's own return value.
bool ReturnsDirectly(UINT message) {
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

// False when the window is gone or was in that state before.
bool Enable(HWND handle, bool enable) {
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = FindWindowObject(lock, handle);
        if (!window || window->enabled() == enable)
            return false;
        window->style &= ~WS_DISABLED;
        window->style |= enable ? 0 : WS_DISABLED;
    }
    if (!enable) {
        Notify(handle, WM_CANCELMODE, 0, 0);
        DropFocus(handle);
    }
    Notify(handle, WM_ENABLE, enable, 0);
    return true;
}

// The owner is disabled while the dialog runs; one that was disabled before stays so afterwards.
void DisableOwner(HWND owner, ModalRun& run) {
    if (!Enable(owner, false))
        return;
    kernel::KernelLock lock = kernel::LockKernel();
    run.disabled_owner = owner;
}

void EnableOwner(ModalRun& run) {
    kernel::KernelLock lock = kernel::LockKernel();
    const HWND owner = std::exchange(run.disabled_owner, HWND{});
    lock.unlock();
    if (!Enable(owner, true))
        return;
    // Destroyed before, the dialog could not pass the foreground on to its disabled owner.
    lock.lock();
    const bool nobody = TheDesktop(lock).foreground == NULL;
    lock.unlock();
    if (nobody)
        BringForward(owner, WA_ACTIVE);
}

void RunModally(HWND dialog, const ModalRun& run) {
    const auto ended = [&](kernel::KernelLock& lock) {
        return run.ended || !FindWindowObject(lock, dialog);
    };
    kernel::KernelLock lock = kernel::LockKernel();
    const bool shows = !ended(lock);
    lock.unlock();
    if (shows)
        ShowWindow(dialog, SW_SHOW);
    MSG message{};
    for (;;) {
        const BOOL got = WaitForMessage(message, {}, ended);
        if (got > 0) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
            continue;
        }
        // The loop outside must receive the quit.
        if (message.message == WM_QUIT)
            PostQuitMessage(static_cast<int>(message.wParam));
        return;
    }
}

}  // namespace

LRESULT CALLBACK DialogClassProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (const auto procedure = reinterpret_cast<DLGPROC>(ExtraValue(dialog, DWLP_DLGPROC))) {
        SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 0);
        const INT_PTR handled = CallDialogProcedure(procedure, dialog, message, wparam, lparam);
        if (ReturnsDirectly(message))
            return handled;
        if (handled)
            return ExtraValue(dialog, DWLP_MSGRESULT);
    }
    if (message != WM_CLOSE)
        return DefWindowProcW(dialog, message, wparam, lparam);
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    return 0;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

INT_PTR DialogBoxIndirectParamW(HINSTANCE instance, LPCDLGTEMPLATEW resource, HWND owner,
                                DLGPROC procedure, LPARAM parameter) {
    const kernel::ApiCall call("DialogBoxIndirectParamW");
    if (call.Fails())
        return -1;
    const auto run = std::make_shared<ModalRun>();
    const HWND dialog = CreateDialogWindow(instance, resource, owner, procedure, run);
    if (!dialog)
        return -1;
    DisableOwner(owner, *run);
    CallProcedure(dialog, WM_INITDIALOG, 0, parameter);
    RunModally(dialog, *run);
    EnableOwner(*run);
    DestroyOwn(dialog);
    kernel::KernelLock lock = kernel::LockKernel();
    return run->result;
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
    const kernel::ApiCall call("EndDialog");
    if (call.Fails())
        return FALSE;
    std::shared_ptr<ModalRun> run;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, dialog);
        if (!window)
            return FALSE;
        run = window->modal_run;
        if (!run) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return FALSE;
        }
        run->result = result;
    }
    EnableOwner(*run);
    ShowWindow(dialog, SW_HIDE);
    kernel::KernelLock lock = kernel::LockKernel();
    run->ended = true;
    kernel::Wake(lock);
    return TRUE;
}
