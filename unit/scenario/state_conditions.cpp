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

bool IsNamedStep(ScenarioContext&, const Values& values) {
    const auto named =
        std::ranges::find_if(kSteps, [&](const StepWord& step) { return values.Chose(step.word); });
    const auto wizard = ReadWizard();
    return wizard && named != std::end(kSteps) && wizard->step == named->step;
}

bool IsNumberedStep(ScenarioContext&, const Values& values) {
    const auto wizard = ReadWizard();
    return wizard && wizard->step == values.Number("STEP");
}

std::string TheStep(ScenarioContext&) {
    const auto wizard = ReadWizard();
    if (!wizard)
        return "the wizard has no window";
    return "the step is " + std::to_string(wizard->step) + ", " + WizardStepName(wizard->step);
}

bool IsPercent(ScenarioContext&, const Values& values) {
    const auto wizard = ReadWizard();
    if (!wizard)
        return false;
    return values.Chose("least") ? wizard->percent >= values.Number("PERCENT")
                                 : wizard->percent == values.Number("PERCENT");
}

std::string ThePercent(ScenarioContext&) {
    const auto wizard = ReadWizard();
    return wizard ? "the percent is " + std::to_string(wizard->percent)
                  : "the wizard has no window";
}

// Whether is(text, TEXT) holds for one of the texts on the screen.
template <class Is>
bool AnyText(ScenarioContext& context, const Values& values, Is is) {
    const std::wstring wanted = platform::kernel::FromUtf8(values.Text("TEXT"));
    const auto texts = ScreenReader(context.op.unit().Screen()).Texts();
    return std::ranges::any_of(texts, [&](const std::wstring& text) { return is(text, wanted); });
}

bool ShowsText(ScenarioContext& context, const Values& values) {
    return AnyText(context, values, std::equal_to<>());
}
bool ShowsStart(ScenarioContext& context, const Values& values) {
    return AnyText(context, values, [](const std::wstring& text, const std::wstring& start) {
        return text.starts_with(start);
    });
}
bool ShowsPart(ScenarioContext& context, const Values& values) {
    return AnyText(context, values, [](const std::wstring& text, const std::wstring& part) {
        return text.find(part) != std::wstring::npos;
    });
}

bool ShowsButton(ScenarioContext& context, const Values& values) {
    return context.op.FindButton(values.Text("BUTTON")).has_value();
}

bool ShowsVideo(ScenarioContext& context, const Values&) {
    return context.op.unit().scaler().state().VideoShows();
}

bool IsSuspended(ScenarioContext& context, const Values&) {
    return context.op.unit().suspended();
}

bool Runs(ScenarioContext& context, const Values&) {
    return context.op.unit().program().running();
}
bool HasEnded(ScenarioContext& context, const Values& values) {
    const ProgramHost& program = context.op.unit().program();
    const bool ended = program.started() && !program.running();
    return ended && (!values.Has("STATUS") || program.exit_code() == values.Number("STATUS"));
}
std::string TheProgram(ScenarioContext& context) {
    const ProgramHost& program = context.op.unit().program();
    return program.running()
               ? "the program is running"
               : "the program has ended with status " + std::to_string(program.exit_code());
}

bool RunsFirmware(ScenarioContext& context, const Values& values) {
    const dvrsim::Dvr* const dvr = context.op.unit().dvr().dvr();
    return dvr && dvr->FirmwareVersion() == values.Text("VERSION");
}
std::string TheFirmware(ScenarioContext& context) {
    const dvrsim::Dvr* const dvr = context.op.unit().dvr().dvr();
    return dvr ? "the DVR runs " + dvr->FirmwareVersion() : "the DVR is not the simulated one";
}

}  // namespace

std::vector<Condition> StateConditions() {
    return {
        {"step power-on|check-card|insert-card|updating|wait|remove-card|result|reopen",
         "The wizard is at that step.", IsNamedStep, TheStep},
        {"step STEP", "The wizard is at the step with that number.", IsNumberedStep, TheStep},
        {"text TEXT", "The text is on the screen, as the program drew it.", ShowsText},
        {"text starting with TEXT", "A text that starts with this one is on the screen.",
         ShowsStart},
        {"text containing TEXT", "A text that contains this one is on the screen.", ShowsPart},
        {"button BUTTON", "The button is on the screen.", ShowsButton},
        {"percent [at least] PERCENT",
         "The DVR has reported that percent, or at least that percent.", IsPercent, ThePercent},
        {"video", "The scaler shows the DVR's picture under the key colour.", ShowsVideo},
        {"suspended", "The unit is suspended.", IsSuspended},
        {"program running", "The program has started and has not ended.", Runs, TheProgram},
        {"program ended [with STATUS]", "The program has ended, with that exit status.", HasEnded,
         TheProgram},
        {"firmware VERSION", "The simulated DVR runs that firmware version.", RunsFirmware,
         TheFirmware},
    };
}

const std::vector<Condition>& Conditions() {
    static const std::vector<Condition> conditions = [] {
        std::vector<Condition> all = StateConditions();
        std::ranges::move(EventConditions(), std::back_inserter(all));
        return all;
    }();
    return conditions;
}

}  // namespace unit
