#include "unit/scenario/failure_report.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <utility>

#include "unit/state/unit_state.h"

namespace unit {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

bool Write(const std::string& path, const std::string& text, std::string& problem) {
    errno = 0;
    std::ofstream stream(path);
    stream << text;
    stream.close();
    if (stream)
        return true;
    problem = path + ": " + std::strerror(errno);
    return false;
}

}  // namespace

std::string SaveFailure(Stage& stage, const std::string& problem) {
    std::error_code error;
    std::filesystem::create_directories(stage.out, error);
    if (error)
        return stage.out + ": " + error.message();
    const auto is_log = [](const Happening& happening) {
        return std::holds_alternative<LineLogged>(happening);
    };
    const auto is_any = [](const Happening&) { return true; };
    const std::pair<const char*, std::string> files[] = {
        {"failure.txt", problem + "\nseed " + std::to_string(stage.options.seed) + "\n"},
        {"state.json", StateJson(stage.op.unit()) + "\n"},
        {"debug.log", Lines(stage.happenings.Latest(kAll, is_log))},
        {"events.log", Lines(stage.happenings.Latest(kAll, is_any))},
    };
    std::string wrong;
    for (const auto& [name, text] : files)
        if (!Write(stage.out + "/" + name, text, wrong))
            return wrong;
    if (!WritePng(stage.op.unit().TakePicture(), stage.out + "/screen.png", wrong))
        return wrong;
    return "seed " + std::to_string(stage.options.seed) + "; saved in " + stage.out +
           ": failure.txt, state.json, screen.png, debug.log, events.log";
}

}  // namespace unit
