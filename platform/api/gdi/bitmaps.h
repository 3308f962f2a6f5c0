#pragma once

#include <windef.h>

#define BI_RGB 0U
#define BI_RLE8 1U
#define BI_RLE4 2U
#define BI_BITFIELDS 3U

#define DIB_RGB_COLORS 0U
#define DIB_PAL_COLORS 1U

struct tagBITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
};
using BITMAP = tagBITMAP;
using PBITMAP = BITMAP*;
using LPBITMAP = BITMAP*;

static_assert(sizeof(BITMAP) == 32 && offsetof(BITMAP, bmBitsPixel) == 18);

struct tagRGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};
using RGBQUAD = tagRGBQUAD;

struct tagBITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
using BITMAPINFOHEADER = tagBITMAPINFOHEADER;
using PBITMAPINFOHEADER = BITMAPINFOHEADER*;
using LPBITMAPINFOHEADER = BITMAPINFOHEADER*;

struct tagBITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
using BITMAPINFO = tagBITMAPINFO;
using PBITMAPINFO = BITMAPINFO*;
using LPBITMAPINFO = BITMAPINFO*;

#pragma pack(push, 2)
struct tagBITMAPFILEHEADER {
    WORD bfType;
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)
using BITMAPFILEHEADER = tagBITMAPFILEHEADER;
using PBITMAPFILEHEADER = BITMAPFILEHEADER*;
using LPBITMAPFILEHEADER = BITMAPFILEHEADER*;

static_assert(sizeof(RGBQUAD) == 4);
static_assert(sizeof(BITMAPINFOHEADER) == 40 && offsetof(BITMAPINFOHEADER, biClrUsed) == 32);
static_assert(sizeof(BITMAPINFO) == 44);
static_assert(sizeof(BITMAPFILEHEADER) == 14 && offsetof(BITMAPFILEHEADER, bfOffBits) == 10);

extern "C" {

// A new bitmap is black.
HBITMAP WINAPI CreateCompatibleBitmap(HDC hdc, int cx, int cy);

}  // extern "C"
