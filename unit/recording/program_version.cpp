#include "unit/recording/program_version.h"

#include <windows.h>

#include <cstddef>
#include <vector>

namespace unit {

std::string ProgramVersion() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::vector<std::byte> block(GetFileVersionInfoSizeW(path, nullptr));
    void* found = nullptr;
    UINT length = 0;
    if (block.empty() ||
        !GetFileVersionInfoW(path, 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &found, &length))
        return "unknown";
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    std::string text;
    for (const unsigned part : {HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
                                HIWORD(info.dwFileVersionLS), LOWORD(info.dwFileVersionLS)})
        text += (text.empty() ? "" : ".") + std::to_string(part);
    return text;
}

}  // namespace unit
