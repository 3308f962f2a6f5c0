#pragma once

#include <windef.h>

#include "errors.h"

#define MAKEINTRESOURCEW(id) ((LPWSTR)((ULONG_PTR)((WORD)(id))))
#define IS_INTRESOURCE(name) ((((ULONG_PTR)(name)) >> 16) == 0)

#define RT_CURSOR MAKEINTRESOURCEW(1)
#define RT_BITMAP MAKEINTRESOURCEW(2)
#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_MENU MAKEINTRESOURCEW(4)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_FONTDIR MAKEINTRESOURCEW(7)
#define RT_FONT MAKEINTRESOURCEW(8)
#define RT_ACCELERATOR MAKEINTRESOURCEW(9)
#define RT_RCDATA MAKEINTRESOURCEW(10)
#define RT_MESSAGETABLE MAKEINTRESOURCEW(11)
#define RT_GROUP_CURSOR MAKEINTRESOURCEW(12)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)
#define RT_VERSION MAKEINTRESOURCEW(16)
#define RT_HTML MAKEINTRESOURCEW(23)

extern "C" {

// The program's entry.
int WINAPI WinMain(HINSTANCE hInstance, HINSTANCE hPrevInstance, LPWSTR lpCmdLine, int nShowCmd);

// The one module is the program; NULL stands for it in every call that takes a module.
DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize);

HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR lpName, LPCWSTR lpType);
HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo);
LPVOID WINAPI LockResource(HGLOBAL hResData);
int WINAPI LoadStringW(HINSTANCE hInstance, UINT uID, LPWSTR lpBuffer, int nBufferMax);

}  // extern "C"
