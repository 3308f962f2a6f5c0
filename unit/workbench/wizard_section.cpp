#include "unit/probe/wizard_probe.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

struct Advice {
    int step;
    const char* text;
};

// What a newcomer does next, by the wizard's step.
constexpr Advice kAdvice[] = {
    {-1, "Click \"Power On\" on the unit's screen: the mouse is the finger."},
    {0, "Take the SD card out if it is in, then click \"Next\"."},
    {1, "Put the SD card in, then click \"Update\"."},
    {2, "The DVR updates itself. Try a fault, or wait."},
    {3, "Wait for the DVR, which restarts."},
    {4, "Take the SD card out, then click \"Next\"."},
    {5, "The walk is over; the result is on the screen."},
    {6, "Close the wizard with its red button."},
};

const char* AdviceFor(int step) {
    for (const Advice& advice : kAdvice)
        if (advice.step == step)
            return advice.text;
    return "";
}

}  // namespace

void DrawWizardSection(Desk& desk) {
    if (!Group(desk, "Wizard"))
        return;
    const std::optional<WizardState> wizard = ReadWizard();
    if (!wizard) {
        ColoredText(color::kDim, "The wizard has no window yet.");
        return;
    }
    ImGui::PushTextWrapPos(0);
    ColoredText(color::kAccent, AdviceFor(wizard->step));
    ImGui::PopTextWrapPos();
    Field(desk, "Step", std::to_string(wizard->step) + "  " + WizardStepName(wizard->step));
    Field(desk, "Percent", std::to_string(wizard->percent) + " %");
    Field(desk, "DVR is", RunningStateName(wizard->running_state));
    Field(desk, "DVR version", wizard->dvr_version.empty() ? "not known" : wizard->dvr_version);
    Field(desk, "Image",
          wizard->bin_version == 0 ? std::string("none reported")
                                   : std::string("reported, begins with '") +
                                         static_cast<char>(wizard->bin_version) + "'");
}

}  // namespace unit
