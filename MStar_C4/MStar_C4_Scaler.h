#pragma once

#include <windows.h>

#include <cstddef>

// The client of the display scaler's driver. One device per program, used by the window's thread
// alone. A failed request is logged; without an open device a request is refused with a log line.

// The scaler shows the DVR's composite video wherever the graphics plane has this colour.
inline constexpr COLORREF kColorKey = RGB(0, 16, 0);
static_assert(kColorKey == 0x00001000);
// The only alpha value that the program sends.
inline constexpr DWORD kScalerAlpha = 63;

#pragma pack(push, 1)
// The part of the scaler's input that is shown, and its place on the screen.
struct MstarScalerWindow {
    DWORD reserved;
    WORD source_window[4];  // in the order of the display window
    WORD input_width;
    WORD input_height;
    WORD display_x;
    WORD display_y;
    WORD display_width;
    WORD display_height;
    BYTE flags[2];  // set by Mstar_C4_Scaler_SetWindow
    BYTE padding[2];
};
#pragma pack(pop)

static_assert(sizeof(MstarScalerWindow) == 28 && offsetof(MstarScalerWindow, source_window) == 4);
static_assert(offsetof(MstarScalerWindow, input_width) == 12);
static_assert(offsetof(MstarScalerWindow, display_x) == 16);
static_assert(offsetof(MstarScalerWindow, flags) == 24);

// Opens the driver, after closing what an earlier call opened. While the driver is absent it waits:
// until the system has been up for 12 seconds, then for up to 121 attempts 100 ms apart. FALSE,
// with nothing open, when the driver stays absent or its event cannot be created.
BOOL Mstar_C4_Scaler_Init();

// Closes the driver, if it is open.
void Mstar_C4_Scaler_DeInit();

// Releases the client's driver buffers. The client maps none, so this only logs.
void Mstar_C4_Scaler_FreeMemory();

// Requests. FALSE when the device is not open or the driver refused.
BOOL Mstar_C4_Scaler_Sw2Scaler();
BOOL Mstar_C4_Scaler_SW2GOP();
BOOL Mstar_C4_Scaler_SetAlpha(DWORD alpha);
// Only the low byte of enable is sent.
BOOL Mstar_C4_Scaler_ColorKey(DWORD enable, DWORD color);
// 0 before the composite video begins, 1 when it ends.
BOOL Mstar_C4_Scaler_ChangeDisplayWinddow(DWORD selector);
// Sends everything up to the flags from the caller's record.
BOOL Mstar_C4_Scaler_SetWindow(const MstarScalerWindow* window);
// Shows the composite input at this place of the screen; each value is truncated to 16 bits.
BOOL Mstar_C4_Scaler_SetWindow2(DWORD x, DWORD y, DWORD width, DWORD height);

// Switches the screen to the composite video behind the key colour. TRUE whenever the device is
// open, even when the driver refuses a request.
BOOL Mstar_C4_Scaler_ShowCompositeVideo();
