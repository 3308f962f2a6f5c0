#include "dvrsim/storage_card.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace dvrsim {
namespace {

constexpr std::string_view kMagic = "TOLVANE DVR IMAGE ";
constexpr std::size_t kMinVersion = 17;
// A frame holds the percent and the version.
constexpr std::size_t kMaxVersion = 63;
constexpr std::size_t kFirmwareBytes = 4096;

bool IsVersion(std::string_view text) {
    return text.size() >= kMinVersion && text.size() <= kMaxVersion &&
           std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c <= '~'; });
}

std::optional<std::string> ReadVersion(const std::filesystem::path& file) {
    std::error_code error;
    // Opening a pipe would wait for its writer.
    if (!std::filesystem::is_regular_file(file, error))
        return std::nullopt;
    std::string head(kMagic.size() + kMaxVersion + 1, '\0');
    std::ifstream stream(file, std::ios::binary);
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(stream.gcount()));

    const std::size_t line_end = head.find('\n');
    if (line_end == std::string::npos || !head.starts_with(kMagic))
        return std::nullopt;
    std::string version = head.substr(kMagic.size(), line_end - kMagic.size());
    if (!IsVersion(version))
        return std::nullopt;
    return version;
}

}  // namespace

std::optional<std::string> ReadImageVersion(const std::filesystem::path& folder) {
    for (const std::string_view name : kImageNames)
        if (auto version = ReadVersion(folder / name))
            return version;
    return std::nullopt;
}

std::string WriteImage(const std::filesystem::path& folder, std::string_view version,
                       std::string_view name) {
    if (!IsVersion(version))
        return "'" + std::string(version) +
               "' is no version of an update image; allowed are 17 to 63 characters without "
               "spaces, such as 14.09.01.V1.02.03";
    errno = 0;
    std::ofstream stream(folder / name, std::ios::binary | std::ios::trunc);
    stream << kMagic << version << '\n' << std::string(kFirmwareBytes, '\xFF');
    stream.close();
    return stream ? "" : (folder / name).string() + ": " + std::strerror(errno);
}

}  // namespace dvrsim
