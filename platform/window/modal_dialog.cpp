#include <functional>
#include <utility>

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/window/activation.h"
#include "platform/window/desktop.h"
#include "platform/window/destruction.h"
#include "platform/window/dialog.h"
#include "platform/window/procedure.h"
#include "platform/window/retrieval.h"

using namespace platform;
using namespace platform::window;

namespace {

// The owner is disabled while the dialog runs; one that was disabled before stays so afterwards.
void DisableOwner(HWND owner, ModalRun& run) {
    if (!owner || EnableWindow(owner, FALSE))
        return;
    kernel::KernelLock lock = kernel::LockKernel();
    run.disabled_owner = owner;
}

void EnableOwner(ModalRun& run) {
    kernel::KernelLock lock = kernel::LockKernel();
    const HWND owner = std::exchange(run.disabled_owner, HWND{});
    if (!owner || !FindWindowObject(lock, owner))
        return;
    lock.unlock();
    EnableWindow(owner, TRUE);
    // The dialog went while its owner could not take over from it.
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
        // The quit is for the loop outside.
        if (message.message == WM_QUIT)
            PostQuitMessage(static_cast<int>(message.wParam));
        return;
    }
}

}  // namespace

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
