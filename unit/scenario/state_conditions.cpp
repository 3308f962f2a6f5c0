#include <algorithm>
#include <iterator>

#include "platform/kernel/text.h"
#include "unit/picture/screen_reader.h"
#include "unit/probe/wizard_probe.h"
#include "unit/scenario/conditions.h"

namespace unit {
namespace {

using control::Values;

struct StepWord {
    std::string_view word;
    int step;
};
// "wait" is last: it is also the command word of "wait step result".
constexpr StepWord kSteps[] = {
    {"power-on", -1},   {"check-card", 0}, {"insert-card", 1}, {"updating", 2},
    {"remove-card", 4}, {"result", 5},     {"reopen", 6},      {"wait", 3},
};

bool IsNamedStep(Stage&, const Values& values) {
    const auto named =
        std::ranges::find_if(kSteps, [&](const StepWord& step) { return values.Chose(step.word); });
    const auto wizard = ReadWizard();
    return wizard && named != std::end(kSteps) && wizard->step == named->step;
}

bool IsNumberedStep(Stage&, const Values& values) {
    const auto wizard = ReadWizard();
    return wizard && wizard->step == values.Number("STEP");
}

std::string TheStep(Stage&) {
    const auto wizard = ReadWizard();
    if (!wizard)
        return "the wizard has no window";
    return "the step is " + std::to_string(wizard->step) + ", " + WizardStepName(wizard->step);
}

bool IsPercent(Stage&, const Values& values) {
    const auto wizard = ReadWizard();
    if (!wizard)
        return false;
    return values.Chose("least") ? wizard->percent >= values.Number("PERCENT")
                                 : wizard->percent == values.Number("PERCENT");
}

std::string ThePercent(Stage&) {
    const auto wizard = ReadWizard();
    return wizard ? "the percent is " + std::to_string(wizard->percent)
                  : "the wizard has no window";
}

// Whether one of the texts on the screen is what `is` asks for.
template <class Is>
bool AnyText(Stage& stage, const Values& values, Is is) {
    const std::wstring wanted = platform::kernel::FromUtf8(values.Text("TEXT"));
    const auto texts = ScreenReader(stage.op.unit().Screen()).Texts();
    return std::ranges::any_of(texts, [&](const std::wstring& text) { return is(text, wanted); });
}

bool ShowsText(Stage& stage, const Values& values) {
    return AnyText(stage, values, std::equal_to<>());
}
bool ShowsStart(Stage& stage, const Values& values) {
    return AnyText(stage, values, [](const std::wstring& text, const std::wstring& start) {
        return text.starts_with(start);
    });
}
bool ShowsPart(Stage& stage, const Values& values) {
    return AnyText(stage, values, [](const std::wstring& text, const std::wstring& part) {
        return text.find(part) != std::wstring::npos;
    });
}

bool ShowsButton(Stage& stage, const Values& values) {
    return stage.op.FindButton(values.Text("BUTTON")).has_value();
}

bool ShowsVideo(Stage& stage, const Values&) {
    return stage.op.unit().scaler().state().VideoShows();
}

bool IsSuspended(Stage& stage, const Values&) {
    return stage.op.unit().suspended();
}

bool Runs(Stage& stage, const Values&) {
    return stage.op.unit().program().running();
}
bool HasEnded(Stage& stage, const Values& values) {
    const ProgramHost& program = stage.op.unit().program();
    const bool ended = program.started() && !program.running();
    return ended && (!values.Has("STATUS") || program.exit_code() == values.Number("STATUS"));
}
std::string TheProgram(Stage& stage) {
    const ProgramHost& program = stage.op.unit().program();
    return program.running()
               ? "the program runs"
               : "the program has ended with status " + std::to_string(program.exit_code());
}

bool RunsFirmware(Stage& stage, const Values& values) {
    const dvrsim::Dvr* const dvr = stage.op.unit().dvr().dvr();
    return dvr && dvr->FirmwareVersion() == values.Text("VERSION");
}
std::string TheFirmware(Stage& stage) {
    const dvrsim::Dvr* const dvr = stage.op.unit().dvr().dvr();
    return dvr ? "the DVR runs " + dvr->FirmwareVersion() : "the DVR is not the simulated one";
}

}  // namespace

std::vector<Condition> StateConditions() {
    return {
        {"step power-on|check-card|insert-card|updating|wait|remove-card|result|reopen",
         "The wizard is at that step.", IsNamedStep, TheStep},
        {"step STEP", "The same by number.", IsNumberedStep, TheStep},
        {"text TEXT", "That text stands on the screen, as the program drew it.", ShowsText},
        {"text starting with TEXT", "A text that starts so stands on the screen.", ShowsStart},
        {"text containing TEXT", "A text with that in it stands on the screen.", ShowsPart},
        {"button BUTTON", "That button is on the screen.", ShowsButton},
        {"percent [at least] PERCENT", "The percent that the DVR has reported.", IsPercent,
         ThePercent},
        {"video", "The scaler shows the DVR's picture under the key colour.", ShowsVideo},
        {"suspended", "The unit sleeps.", IsSuspended},
        {"program running", "The program has started and not ended.", Runs, TheProgram},
        {"program ended [with STATUS]", "The program has ended, with that exit status.", HasEnded,
         TheProgram},
        {"firmware VERSION", "The simulated DVR runs that firmware.", RunsFirmware, TheFirmware},
    };
}

const std::vector<Condition>& Conditions() {
    static const std::vector<Condition> conditions = [] {
        std::vector<Condition> all = StateConditions();
        std::ranges::move(HappeningConditions(), std::back_inserter(all));
        return all;
    }();
    return conditions;
}

}  // namespace unit
