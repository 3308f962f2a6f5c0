#pragma once

#include <windows.h>

#include <memory>

#include "platform/window/desktop.h"

namespace platform::window {

// The class that a class argument of the API names (a text, or an atom as MAKEINTRESOURCE makes
// it), or null.
std::shared_ptr<WindowClass> FindClass(kernel::KernelLock& lock, LPCWSTR name);

// The class of dialogs: its atom and its procedure (dialog.cpp), which calls the dialog procedure.
inline constexpr ATOM kDialogClass = 0x8002;
LRESULT CALLBACK DialogClassProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

// Registers the classes that exist by themselves.
void RegisterSystemClasses(kernel::KernelLock& lock);

}  // namespace platform::window
