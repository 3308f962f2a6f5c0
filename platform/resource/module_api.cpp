#include <windows.h>

#include <algorithm>

#include "platform/kernel/api_call.h"
#include "platform/resource/module.h"
#include "platform/resource/program_module.h"

namespace resource = platform::resource;

HMODULE GetModuleHandleW(LPCWSTR name) {
    const platform::kernel::ApiCall call("GetModuleHandleW");
    if (call.Fails())
        return nullptr;
    if (!name)
        return resource::ModuleInstance();
    const std::wstring path = resource::ProgramPath();
    const std::wstring file = path.substr(path.rfind(L'\\') + 1);
    if (!file.empty() && (resource::SameText(name, path) || resource::SameText(name, file)))
        return resource::ModuleInstance();
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size) {
    const platform::kernel::ApiCall call("GetModuleFileNameW");
    if (call.Fails())
        return 0;
    if (!resource::IsProgram(module))
        return 0;
    if (!buffer || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    const std::wstring path = resource::ProgramPath();
    const DWORD copied = std::min(static_cast<DWORD>(path.size()), size - 1);
    path.copy(buffer, copied);
    buffer[copied] = L'\0';
    if (copied == path.size())
        return copied;
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}
