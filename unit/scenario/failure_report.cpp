#include "unit/scenario/failure_report.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <utility>

#include "unit/probe/wizard_probe.h"

namespace unit {
namespace {

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

std::string StateText(Stage& stage) {
    VirtualUnit& unit = stage.hands.unit();
    std::string text;
    if (const auto wizard = ReadWizard())
        text += "step " + std::to_string(wizard->step) + ", " + WizardStepName(wizard->step) +
                "\npercent " + std::to_string(wizard->percent) + "\nDVR version '" +
                wizard->dvr_version + "'\nDVR running state " +
                RunningStateName(wizard->running_state) + "\n";
    else
        text += "the wizard has no window\n";
    text += std::string("external power ") + (unit.external_power() ? "on" : "off") + "\n";
    if (unit.suspended())
        text += "suspended\n";
    for (const std::string& fault : unit.drivers().Faults())
        text += "driver " + fault + "\n";
    return text + "on the screen stand " + stage.hands.WhatStands() + "\n";
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
        {"state.txt", StateText(stage)},
        {"debug.log", Lines(stage.happenings.Latest(kAll, is_log))},
        {"events.log", Lines(stage.happenings.Latest(kAll, is_any))},
    };
    std::string wrong;
    for (const auto& [name, text] : files)
        if (!Write(stage.out + "/" + name, text, wrong))
            return wrong;
    if (!WritePng(stage.hands.unit().TakePicture(), stage.out + "/screen.png", wrong))
        return wrong;
    return "seed " + std::to_string(stage.options.seed) + "; saved in " + stage.out +
           ": failure.txt, state.txt, screen.png, debug.log, events.log";
}

}  // namespace unit
