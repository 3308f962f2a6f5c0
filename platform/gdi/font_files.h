#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace platform::gdi {

// The font files that the platform draws with. No other font and no font setting of the machine
// applies, so that the same screen has the same pixels everywhere.
enum class Typeface { kSans, kSansBold, kMono, kMonoBold, kJapanese };

// The directory that the system's font packages install to.
inline constexpr const char* kFontDirectory = "/usr/share/fonts";

// Finds all of them below a directory. False, with one line in `problem` that names the missing
// file and its package.
bool FindFontFiles(const std::filesystem::path& directory,
                   std::map<Typeface, std::filesystem::path>& files, std::string& problem);

}  // namespace platform::gdi
