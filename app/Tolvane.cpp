#include <windows.h>

#include <atlapp.h>
#include <atlbase.h>
#include <commctrl.h>
#include <objbase.h>

#include "app/RunMainFrame.h"
#include "app/SingleInstance.h"

CAppModule _Module;

int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE /*hPrevInstance*/, LPWSTR lpstrCmdLine,
                   int nCmdShow) {
    const HRESULT single = CheckSingleInstance(hInstance);
    if (FAILED(single) || single == S_FALSE)
        return single;

    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_DATE_CLASSES};
    InitCommonControlsEx(&controls);
    _Module.Init(hInstance);

    const int result = RunMainFrame(lpstrCmdLine, nCmdShow);

    _Module.Term();
    CoUninitialize();
    return result;
}
