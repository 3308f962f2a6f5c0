#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace dvrsim {

// The names under which the DVR looks for an update image on its card, in this order.
inline constexpr std::string_view kImageNames[] = {"gp_cardvr_upgrade.bin", "gp_card_upgrade.bin"};

// An image begins with the line "TOLVANE DVR IMAGE <version>\n", whose version is 17 to 63
// printable characters without blanks ("14.09.01.V1.02.03"); the rest is the firmware, which the
// simulation does not look at.

// The version of the first image in the folder that can be read; empty when there is none. Files
// of any other content, size or kind are passed over.
std::optional<std::string> ReadImageVersion(const std::filesystem::path& folder);

// Creates an image, replacing one of the same name. False when the version does not fit the format
// or the file cannot be written.
bool WriteImage(const std::filesystem::path& folder, std::string_view version,
                std::string_view name = kImageNames[0]);

}  // namespace dvrsim
