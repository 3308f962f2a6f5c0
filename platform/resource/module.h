#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace platform::resource {

// Sets the program's compiled resources (.res) and path; nothing is hidden any more. The bytes must
// stay valid until the next call; handles of earlier resources become invalid. Before the program
// starts. False with the reason in `problem` when the resources are damaged: the program then has
// none.
bool SetModule(std::span<const std::byte> resources, std::wstring path, std::string& problem);

// The program's instance handle, never null. NULL stands for the same module in every call.
HINSTANCE ModuleInstance();

// A fault: the resource is not found from now on. Any thread.
void Hide(LPCWSTR type, LPCWSTR name);

// The data of a resource, or nothing with the last error of FindResourceW. Any thread.
std::optional<std::span<const std::byte>> Find(LPCWSTR type, LPCWSTR name);

}  // namespace platform::resource
