#pragma once

#include <windows.h>

// The serial link passes the DVR's reports to the wizard here, on the receive thread. The result is
// FALSE, and nothing changes, while there is no main frame: before its creation, and from the start
// of its destruction.
BOOL DvrReport_RunningState(BYTE state);
BOOL DvrReport_StorageCard(BYTE status, BYTE percent);
BOOL DvrReport_UpdatePercent(BYTE percent);
// The first character of the update image's version.
BOOL DvrReport_ImageVersion(BYTE character);
// Reads exactly seven characters.
BOOL DvrReport_Version(const char* characters);

BOOL DvrReport_HasMainFrame();
