#pragma once

#include <windows.h>

// Opens and configures the DVR's serial port as the link's port; TRUE at once when it is open
// already. On FALSE there is no port. The window's thread only.
BOOL COM_Init();

// Closes the link's port, if there is one; the result is that of the closing. Stops a receive
// thread but does not wait for it. The window's thread only.
BOOL COM_DeInit();
