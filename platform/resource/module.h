#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace platform::resource {

// Makes the compiled resources (.res) and the path those of the program, and everything visible
// again. The bytes stay where they are until the next call; handles of earlier resources become
// invalid. Before the program starts. False, with what is wrong in `problem`, when the resources
// are damaged: the program then has none.
bool SetModule(std::span<const std::byte> resources, std::wstring path, std::string& problem);

// The program's instance handle, never null. NULL stands for the same module in every call.
HINSTANCE ModuleInstance();

// A fault: the resource is not found from now on. Any thread.
void Hide(LPCWSTR type, LPCWSTR name);

// The data of a resource; without it, the last error is the one of FindResourceW. Any thread.
std::optional<std::span<const std::byte>> Find(LPCWSTR type, LPCWSTR name);

}  // namespace platform::resource
