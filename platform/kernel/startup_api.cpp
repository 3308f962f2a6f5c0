#include <commctrl.h>
#include <objbase.h>
#include <windows.h>

// Programs call these two at start-up and ignore what they answer: there is no COM object and no
// common control on this unit, and both say so in their results only when asked wrongly.

HRESULT CoInitializeEx(LPVOID reserved, DWORD model) {
    return reserved || model > COINIT_APARTMENTTHREADED ? E_INVALIDARG : S_OK;
}

void CoUninitialize() {}

BOOL InitCommonControlsEx(const INITCOMMONCONTROLSEX* request) {
    if (request && request->dwSize == sizeof *request)
        return TRUE;
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}
