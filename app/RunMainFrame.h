#pragma once

#include <windows.h>

// Creates and shows the main window and runs the thread's message loop until the window has quit
// it. Returns the loop's result, 0 when the window could not be created.
int RunMainFrame(LPWSTR lpstrCmdLine, int nCmdShow);
