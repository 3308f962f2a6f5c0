#pragma once

#include <windef.h>

#include "../base/errors.h"

#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7
#define IDCLOSE 8

using DLGPROC = INT_PTR(CALLBACK*)(HWND hwndDlg, UINT uMsg, WPARAM wParam, LPARAM lParam);

#define DWLP_MSGRESULT 0
#define DWLP_DLGPROC ((int)(DWLP_MSGRESULT + sizeof(LRESULT)))
#define DWLP_USER ((int)(DWLP_DLGPROC + sizeof(DLGPROC)))

// The heads of a dialog resource and of each of its controls, in dialog units. The menu, class,
// title and font that follow are UTF-16 text, of 16-bit units unlike WCHAR.
#pragma pack(push, 2)
struct DLGTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    WORD cdit;
    short x;
    short y;
    short cx;
    short cy;
};
struct DLGITEMTEMPLATE {
    DWORD style;
    DWORD dwExtendedStyle;
    short x;
    short y;
    short cx;
    short cy;
    WORD id;
};
#pragma pack(pop)
using LPDLGTEMPLATE = DLGTEMPLATE*;
using LPDLGTEMPLATEW = DLGTEMPLATE*;
using LPCDLGTEMPLATE = const DLGTEMPLATE*;
using LPCDLGTEMPLATEW = const DLGTEMPLATE*;
using LPDLGITEMTEMPLATE = DLGITEMTEMPLATE*;

static_assert(sizeof(DLGTEMPLATE) == 18 && offsetof(DLGTEMPLATE, x) == 10);
static_assert(sizeof(DLGITEMTEMPLATE) == 18 && offsetof(DLGITEMTEMPLATE, id) == 16);

extern "C" {

// Runs the dialog modally and returns what it ends with; -1 when it cannot be made.
INT_PTR WINAPI DialogBoxIndirectParamW(HINSTANCE hInstance, LPCDLGTEMPLATEW lpTemplate,
                                       HWND hWndParent, DLGPROC lpDialogFunc, LPARAM dwInitParam);
BOOL WINAPI EndDialog(HWND hDlg, INT_PTR nResult);

}  // extern "C"
