#include <windows.h>

#include <algorithm>
#include <cstring>

#include "platform/kernel/api_call.h"
#include "platform/resource/module.h"
#include "platform/resource/program_module.h"
#include "platform/resource/version_block.h"

namespace resource = platform::resource;

namespace {

// The version block of the file, which can only be the program's own.
std::optional<std::vector<std::byte>> VersionBlock(LPCWSTR file) {
    if (!file) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return std::nullopt;
    }
    const std::wstring path = resource::ProgramPath();
    if (path.empty() || !resource::SameText(file, path)) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return std::nullopt;
    }
    const auto bytes = resource::Find(RT_VERSION, MAKEINTRESOURCEW(VS_VERSION_INFO));
    if (!bytes)
        return std::nullopt;
    auto block = resource::ConvertVersionBlock(*bytes);
    if (!block)
        SetLastError(ERROR_INVALID_DATA);
    return block;
}

}  // namespace

DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD handle) {
    const platform::kernel::ApiCall call("GetFileVersionInfoSizeW");
    if (call.Fails())
        return 0;
    if (handle)
        *handle = 0;
    const auto block = VersionBlock(file);
    return block ? static_cast<DWORD>(block->size()) : 0;
}

// A buffer too small for the block is refused, where the API would cut the block off.
BOOL GetFileVersionInfoW(LPCWSTR file, DWORD, DWORD size, LPVOID data) {
    const platform::kernel::ApiCall call("GetFileVersionInfoW");
    if (call.Fails())
        return FALSE;
    const auto block = VersionBlock(file);
    if (!block)
        return FALSE;
    if (!data || size < block->size()) {
        SetLastError(data ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::memcpy(data, block->data(), block->size());
    return TRUE;
}

BOOL VerQueryValueW(LPCVOID block, LPCWSTR path, LPVOID* buffer, PUINT length) {
    const platform::kernel::ApiCall call("VerQueryValueW");
    if (call.Fails())
        return FALSE;
    if (!block || !path || !buffer || !length) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const auto value = resource::QueryVersionBlock(static_cast<const std::byte*>(block), path);
    if (!value) {
        *length = 0;
        SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
        return FALSE;
    }
    *buffer = const_cast<std::byte*>(value->address);
    *length = value->length;
    return TRUE;
}
