#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace platform::resource {

// The version block that GetFileVersionInfoW returns: the tree of the resource with WCHAR texts,
// each node as
//     DWORD length of the whole node in bytes, a multiple of 4
//     DWORD length of its value, in characters with the terminator for a text, else in bytes
//     DWORD 1 when the value is a text, else 0
//     WCHAR key, terminated; value, padded to 4 bytes; nodes below
// Nothing when the resource is damaged or does not begin with a VS_FIXEDFILEINFO. Any input is
// safe.
std::optional<std::vector<std::byte>> ConvertVersionBlock(std::span<const std::byte> resource);

struct VersionValue {
    const std::byte* address = nullptr;
    // As in the node.
    UINT length = 0;
};

// The value of the node at `path` ("\StringFileInfo\040904B0\FileVersion") from the root; nothing
// when there is none. `block` is a block of ConvertVersionBlock.
std::optional<VersionValue> QueryVersionBlock(const std::byte* block, std::wstring_view path);

}  // namespace platform::resource
