#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace platform::resource {

// The version block as GetFileVersionInfoW hands it out: the tree of the resource, its texts made
// of WCHAR, each node as
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

// The value of the node that `path` ("\StringFileInfo\040904B0\FileVersion") leads to from the
// root; nothing when there is none. `block` begins with the root of a block made above.
std::optional<VersionValue> QueryVersionBlock(const std::byte* block, std::wstring_view path);

}  // namespace platform::resource
