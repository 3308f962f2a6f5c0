#include <windows.h>

#include <algorithm>

#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

namespace {

// Null when the message's procedure belongs to no running timer: it may be made up or outdated.
TIMERPROC LiveTimerProcedure(const MSG& message) {
    kernel::KernelLock lock = kernel::LockKernel();
    for (const Timer& timer : CurrentQueue(lock)->timers)
        if (timer.window == message.hwnd && timer.id == message.wParam && timer.procedure &&
            reinterpret_cast<LPARAM>(timer.procedure) == message.lParam)
            return timer.procedure;
    return nullptr;
}

bool BelongsToCaller(HWND window) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto target = RequireWindow(lock, window);
    if (target && !IsOwn(lock, *target))
        SetLastError(ERROR_WINDOW_OF_OTHER_THREAD);
    return target && IsOwn(lock, *target);
}

}  // namespace

LRESULT DispatchMessageW(const MSG* message) {
    const kernel::ApiCall call;
    if (!message) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (message->message == WM_TIMER && message->lParam != 0) {
        if (const TIMERPROC procedure = LiveTimerProcedure(*message)) {
            const kernel::ProgramCode program_code;
            procedure(message->hwnd, WM_TIMER, message->wParam, MessageTime());
        }
        return 0;
    }
    if (message->hwnd == NULL || !BelongsToCaller(message->hwnd))
        return 0;
    return CallProcedure(message->hwnd, message->message, message->wParam, message->lParam);
}

// The unit has no keyboard: there is nothing to translate.
BOOL TranslateMessage(const MSG*) {
    const kernel::ApiCall call;
    return FALSE;
}

// Without a keyboard no table can match.
int TranslateAcceleratorW(HWND, HACCEL, LPMSG) {
    const kernel::ApiCall call("TranslateAcceleratorW");
    if (call.Fails())
        return 0;
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
}
