#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>

// One calling convention.
#define WINAPI
#define WINAPIV
#define APIENTRY
#define CALLBACK

#define VOID void
#define CONST const

#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif

using BOOL = int;
using BYTE = std::uint8_t;
using BOOLEAN = BYTE;
using CHAR = char;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using WORD = std::uint16_t;
using INT = std::int32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using FLOAT = float;
// One code point of 32 bits, where the device has UTF-16: records that hold text are longer here.
using WCHAR = wchar_t;

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = ULONG_PTR;
using SIZE_T = ULONG_PTR;

using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using HRESULT = LONG;
using ATOM = WORD;
using COLORREF = DWORD;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PBOOL = BOOL*;
using LPBOOL = BOOL*;
using PBYTE = BYTE*;
using LPBYTE = BYTE*;
using LPINT = int*;
using PUINT = UINT*;
using PLONG = LONG*;
using LPLONG = LONG*;
using PWORD = WORD*;
using LPWORD = WORD*;
using PDWORD = DWORD*;
using LPDWORD = DWORD*;
using PCHAR = CHAR*;
using LPSTR = CHAR*;
using LPCSTR = const CHAR*;
using PWSTR = WCHAR*;
using LPWSTR = WCHAR*;
using PCWSTR = const WCHAR*;
using LPCWSTR = const WCHAR*;
using TCHAR = WCHAR;
using LPTSTR = LPWSTR;
using LPCTSTR = LPCWSTR;

static_assert(sizeof(WCHAR) == 4 && sizeof(BOOL) == 4 && sizeof(void*) == 8);

#define _T(text) L##text
#define TEXT(text) L##text

using HANDLE = void*;
using PHANDLE = HANDLE*;
using LPHANDLE = HANDLE*;

// A type of its own for each kind of handle, as STRICT makes them.
#define DECLARE_HANDLE(name) \
    struct name##__ {        \
        int unused;          \
    };                       \
    using name = name##__*

DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HDC);
DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HMENU);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HACCEL);
DECLARE_HANDLE(HRSRC);
DECLARE_HANDLE(HBITMAP);
DECLARE_HANDLE(HBRUSH);
DECLARE_HANDLE(HFONT);
DECLARE_HANDLE(HPEN);
DECLARE_HANDLE(HRGN);
DECLARE_HANDLE(HPALETTE);
using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using HGDIOBJ = void*;
using HGLOBAL = HANDLE;
using HLOCAL = HANDLE;

#define MAKELONG(low, high)                         \
    ((LONG)(((WORD)(((DWORD_PTR)(low)) & 0xFFFF)) | \
            ((DWORD)((WORD)(((DWORD_PTR)(high)) & 0xFFFF))) << 16))
#define LOWORD(value) ((WORD)(((DWORD_PTR)(value)) & 0xFFFF))
#define HIWORD(value) ((WORD)((((DWORD_PTR)(value)) >> 16) & 0xFFFF))
#define LOBYTE(value) ((BYTE)(((DWORD_PTR)(value)) & 0xFF))

struct tagPOINT {
    LONG x;
    LONG y;
};
using POINT = tagPOINT;
using PPOINT = POINT*;
using LPPOINT = POINT*;

struct tagSIZE {
    LONG cx;
    LONG cy;
};
using SIZE = tagSIZE;
using PSIZE = SIZE*;
using LPSIZE = SIZE*;

struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using RECT = tagRECT;
using PRECT = RECT*;
using LPRECT = RECT*;
using LPCRECT = const RECT*;

static_assert(sizeof(POINT) == 8 && sizeof(SIZE) == 8 && sizeof(RECT) == 16);
