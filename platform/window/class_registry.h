#pragma once

#include <windows.h>

#include <memory>
#include <string_view>

#include "platform/window/desktop.h"

namespace platform::window {

// The class that the API's class argument (a name, or an atom as MAKEINTRESOURCE makes it) means,
// or null.
std::shared_ptr<WindowClass> FindClass(kernel::KernelLock& lock, LPCWSTR name);

// The class of dialogs, whose procedure is DefDlgProcW, has this atom.
inline constexpr ATOM kDialogClass = 0x8002;

// The classes that exist before any is registered.
void RegisterSystemClasses(kernel::KernelLock& lock);

// Names of classes and windows match so.
bool EqualIgnoringCase(std::wstring_view a, std::wstring_view b);

}  // namespace platform::window
