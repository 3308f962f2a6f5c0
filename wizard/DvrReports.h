#pragma once

#include <windows.h>

// Where the serial link hands over what the DVR reports, on the receive thread. Nothing is changed,
// and the result is FALSE, while there is no main frame: before it exists, and from the start of
// its destruction.
BOOL DvrReport_RunningState(BYTE state);
BOOL DvrReport_StorageCard(BYTE status, BYTE percent);
BOOL DvrReport_UpdatePercent(BYTE percent);
// The first character of the update image's version.
BOOL DvrReport_ImageVersion(BYTE character);
// Reads exactly seven characters.
BOOL DvrReport_Version(const char* characters);

BOOL DvrReport_HasMainFrame();
