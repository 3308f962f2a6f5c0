#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "platform/resource/resource_file.h"

namespace platform::resource {

// Whether the handle is the program's; ERROR_MOD_NOT_FOUND otherwise.
bool IsProgram(HMODULE module);

// The path given to SetModule.
std::wstring ProgramPath();

// The resource, or null with ERROR_RESOURCE_TYPE_NOT_FOUND or ERROR_RESOURCE_NAME_NOT_FOUND. Valid
// until the next SetModule.
const Resource* FindEntry(LPCWSTR type, LPCWSTR name);

// The resource behind a handle of FindResourceW, or null with ERROR_INVALID_HANDLE.
const Resource* EntryOf(HRSRC handle);

}  // namespace platform::resource
