#include "platform/kernel/api_call.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

using namespace platform;
using namespace platform::window;

// A window's text is what its procedure says it is.
int GetWindowTextW(HWND window, LPWSTR text, int size) {
    const kernel::ApiCall call("GetWindowTextW");
    if (call.Fails())
        return 0;
    if (!text || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    *text = L'\0';
    LRESULT length = 0;
    SendAndWait(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(text),
                length);
    return static_cast<int>(length);
}

BOOL SetWindowTextW(HWND window, LPCWSTR text) {
    const kernel::ApiCall call("SetWindowTextW");
    if (call.Fails())
        return FALSE;
    LRESULT taken = FALSE;
    SendAndWait(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text), taken);
    return taken != FALSE;
}
