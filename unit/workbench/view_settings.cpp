#include "unit/workbench/view_settings.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>

namespace unit {
namespace {

constexpr int kMostUnits = 20'000;
// A settings file is shorter; more is not read.
constexpr std::size_t kMostBytes = 16'384;

std::optional<int> ReadUnits(std::istringstream& words) {
    int value = 0;
    return words >> value && value > 0 && value <= kMostUnits ? std::optional(value) : std::nullopt;
}

// The value of a line with one of two words.
template <class Value>
void ReadChoice(std::istringstream& words, Value& value, const char* first, Value first_value,
                const char* second, Value second_value) {
    std::string word;
    words >> word;
    if (word == first)
        value = first_value;
    else if (word == second)
        value = second_value;
}

void ReadLine(const std::string& line, ViewSettings& settings) {
    std::istringstream words(line);
    std::string name;
    words >> name;
    if (name == "window") {
        const auto width = ReadUnits(words);
        const auto height = ReadUnits(words);
        if (width && height) {
            settings.width = *width;
            settings.height = *height;
        }
    } else if (name == "dock") {
        if (const auto height = ReadUnits(words))
            settings.dock_height = static_cast<float>(*height);
    } else if (name == "scaling") {
        ReadChoice(words, settings.scaling, "whole", Scaling::kWhole, "smooth", Scaling::kSmooth);
    } else if (name == "theme") {
        ReadChoice(words, settings.theme, "dark", Theme::kDark, "light", Theme::kLight);
    } else if (name == "keys") {
        ReadChoice(words, settings.keys_act, "on", true, "off", false);
    } else if (name == "introduced") {
        ReadChoice(words, settings.introduced, "yes", true, "no", false);
    } else if (name == "open" || name == "closed") {
        std::string title;
        if (std::getline(words >> std::ws, title))
            settings.groups[title] = name == "open";
    }
}

}  // namespace

std::string SettingsText(const ViewSettings& settings) {
    std::ostringstream text;
    if (settings.width > 0 && settings.height > 0)
        text << "window " << settings.width << ' ' << settings.height << '\n';
    if (settings.dock_height >= 1)
        text << "dock " << static_cast<int>(settings.dock_height) << '\n';
    text << "scaling " << (settings.scaling == Scaling::kWhole ? "whole" : "smooth") << '\n'
         << "theme " << (settings.theme == Theme::kDark ? "dark" : "light") << '\n'
         << "keys " << (settings.keys_act ? "on" : "off") << '\n'
         << "introduced " << (settings.introduced ? "yes" : "no") << '\n';
    for (const auto& [title, open] : settings.groups)
        text << (open ? "open " : "closed ") << title << '\n';
    return text.str();
}

ViewSettings ReadSettings(std::string_view text) {
    ViewSettings settings;
    std::istringstream lines{std::string(text.substr(0, kMostBytes))};
    for (std::string line; std::getline(lines, line);)
        ReadLine(line, settings);
    return settings;
}

std::filesystem::path SettingsFile() {
    const auto folder = [](const char* variable) {
        const char* const value = std::getenv(variable);
        return std::filesystem::path(value ? value : "");
    };
    // A relative path is invalid there.
    if (const auto state = folder("XDG_STATE_HOME"); state.is_absolute())
        return state / "tolvane" / "workbench";
    if (const auto home = folder("HOME"); home.is_absolute())
        return home / ".local" / "state" / "tolvane" / "workbench";
    return {};
}

ViewSettings LoadSettings(const std::filesystem::path& file) {
    std::ifstream input(file, std::ios::binary);
    std::string text(kMostBytes, '\0');
    input.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(input.gcount()));
    return ReadSettings(text);
}

void SaveSettings(const std::filesystem::path& file, const ViewSettings& settings) {
    if (file.empty())
        return;
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    // Another unit may write at the same time.
    const std::filesystem::path whole = file.string() + "." + std::to_string(getpid());
    bool written = false;
    {
        std::ofstream output(whole, std::ios::binary | std::ios::trunc);
        output << SettingsText(settings);
        output.close();
        written = output.good();
    }
    if (written)
        std::filesystem::rename(whole, file, error);
    if (!written || error)
        std::filesystem::remove(whole, error);
}

}  // namespace unit
