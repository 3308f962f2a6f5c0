#pragma once

#include <windows.h>

// Names the main window's class after string 128 and makes sure that one copy of the program runs.
//
// S_OK: this copy is to run, and keeps its named mutex to the end of the process.
// S_FALSE: another copy runs and has been brought to the front; this one is to end.
// E_FAIL: string 128 is missing or the mutex cannot be created.
// E_INVALIDARG: the mutex's name belongs to an object of another kind.
HRESULT CheckSingleInstance(HINSTANCE hInstance);
