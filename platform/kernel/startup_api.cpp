#include <commctrl.h>
#include <objbase.h>
#include <windows.h>

#include "platform/kernel/api_call.h"

using namespace platform::kernel;

// Programs call these two at start-up and ignore what they answer: there is no COM object and no
// common control on this unit, and both say so in their results only when asked wrongly.

HRESULT CoInitializeEx(LPVOID reserved, DWORD model) {
    const ApiCall call("CoInitializeEx");
    if (call.Fails())
        return E_OUTOFMEMORY;
    return reserved || model > COINIT_APARTMENTTHREADED ? E_INVALIDARG : S_OK;
}

void CoUninitialize() {}

BOOL InitCommonControlsEx(const INITCOMMONCONTROLSEX* request) {
    const ApiCall call("InitCommonControlsEx");
    if (call.Fails())
        return FALSE;
    if (request && request->dwSize == sizeof *request)
        return TRUE;
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}
