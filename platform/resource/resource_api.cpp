#include <windows.h>

#include <algorithm>

#include "platform/kernel/api_call.h"
#include "platform/kernel/text.h"
#include "platform/resource/byte_reader.h"
#include "platform/resource/program_module.h"

namespace resource = platform::resource;

namespace {

constexpr UINT kStringsPerBlock = 16;
constexpr UINT kMaxStringId = 0xFFFF;

// The text of a string resource; empty with ERROR_RESOURCE_NAME_NOT_FOUND when there is none.
std::wstring ReadString(UINT id) {
    if (id > kMaxStringId) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return {};
    }
    const resource::Resource* block =
        resource::FindEntry(RT_STRING, MAKEINTRESOURCEW(id / kStringsPerBlock + 1));
    if (!block)
        return {};
    resource::ByteReader reader(block->data);
    for (UINT before = id % kStringsPerBlock; before > 0; --before)
        reader.Bytes(std::size_t{reader.Word()} * 2);
    std::u16string text(reader.Word(), u'\0');
    for (char16_t& unit : text)
        unit = reader.Word();
    if (!reader) {
        SetLastError(ERROR_INVALID_DATA);
        return {};
    }
    if (text.empty())
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return platform::kernel::FromUtf16(text);
}

}  // namespace

HRSRC FindResourceW(HMODULE module, LPCWSTR name, LPCWSTR type) {
    const platform::kernel::ApiCall call("FindResourceW");
    if (call.Fails())
        return nullptr;
    if (!resource::IsProgram(module))
        return nullptr;
    const resource::Resource* found = resource::FindEntry(type, name);
    return reinterpret_cast<HRSRC>(const_cast<resource::Resource*>(found));
}

HGLOBAL LoadResource(HMODULE module, HRSRC handle) {
    const platform::kernel::ApiCall call("LoadResource");
    if (call.Fails())
        return nullptr;
    if (!resource::IsProgram(module))
        return nullptr;
    const resource::Resource* found = resource::EntryOf(handle);
    return found ? const_cast<std::byte*>(found->data.data()) : nullptr;
}

// Resources are always in memory: the handle is the address.
LPVOID LockResource(HGLOBAL data) {
    const platform::kernel::ApiCall call("LockResource");
    if (call.Fails())
        return nullptr;
    if (!data)
        SetLastError(ERROR_INVALID_HANDLE);
    return data;
}

int LoadStringW(HINSTANCE module, UINT id, LPWSTR buffer, int size) {
    const platform::kernel::ApiCall call("LoadStringW");
    if (call.Fails())
        return 0;
    // Without a buffer the device returns a pointer to the resource's own text in an int. Here
    // neither the pointer fits an int nor is that 16-bit text a WCHAR text.
    if (!buffer || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    buffer[0] = L'\0';
    if (!resource::IsProgram(module))
        return 0;
    const std::wstring text = ReadString(id);
    const std::size_t copied = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    text.copy(buffer, copied);
    buffer[copied] = L'\0';
    return static_cast<int>(copied);
}

// Accelerator tables are not supported.
HACCEL LoadAcceleratorsW(HINSTANCE module, LPCWSTR name) {
    const platform::kernel::ApiCall call("LoadAcceleratorsW");
    if (call.Fails())
        return nullptr;
    if (!resource::IsProgram(module))
        return nullptr;
    SetLastError(resource::FindEntry(RT_ACCELERATOR, name) ? ERROR_NOT_SUPPORTED
                                                           : ERROR_RESOURCE_NAME_NOT_FOUND);
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
