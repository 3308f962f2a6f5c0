#include "platform/gdi/font_files.h"

#include <system_error>

namespace platform::gdi {
namespace {

struct FontFileRow {
    Typeface typeface;
    const char* name;
    const char* package;
};

constexpr FontFileRow kFontFiles[] = {
    {Typeface::kSans, "LiberationSans-Regular.ttf", "fonts-liberation"},
    {Typeface::kSansBold, "LiberationSans-Bold.ttf", "fonts-liberation"},
    {Typeface::kMono, "LiberationMono-Regular.ttf", "fonts-liberation"},
    {Typeface::kMonoBold, "LiberationMono-Bold.ttf", "fonts-liberation"},
    {Typeface::kJapanese, "ipag.ttf", "fonts-ipafont-gothic"},
};

}  // namespace

bool FindFontFiles(const std::filesystem::path& directory,
                   std::map<Typeface, std::filesystem::path>& files, std::string& problem) {
    namespace fs = std::filesystem;
    files.clear();
    std::error_code error;
    fs::recursive_directory_iterator entry(directory, fs::directory_options::skip_permission_denied,
                                           error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        for (const FontFileRow& row : kFontFiles) {
            if (entry->path().filename() != row.name)
                continue;
            // Of several copies always the same one, in any order of the directory.
            const auto [file, added] = files.try_emplace(row.typeface, entry->path());
            if (!added && entry->path() < file->second)
                file->second = entry->path();
        }
    }
    for (const FontFileRow& row : kFontFiles) {
        if (files.contains(row.typeface))
            continue;
        problem = std::string("the font file ") + row.name + " is missing below " +
                  directory.string() + "; it comes with the package " + row.package;
        return false;
    }
    return true;
}

}  // namespace platform::gdi
