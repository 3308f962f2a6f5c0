#pragma once

#include <functional>
#include <optional>
#include <string>

namespace unit {

// The state of the wizard: the only access from outside the program to its inside.
struct WizardState {
    int step = 0;
    // As the DVR last reported, 0 to 100.
    int percent = 0;
    // The first character of the update image's version; 0 until the DVR has found an image.
    int bin_version = 0;
    int running_state = 0;
    // Up to seven characters; empty while unknown.
    std::string dvr_version;

    bool operator==(const WizardState&) const = default;
};

// Empty while the wizard has no window. Any thread, without locks of the platform.
std::optional<WizardState> ReadWizard();

// Replaces the way to read the state, for a program that is not linked to this one. `read` is
// called under the kernel lock. Before the program starts.
void SetWizardReader(std::function<std::optional<WizardState>()> read);

// The names of the wizard's steps and running states; "?" for an unknown number.
const char* WizardStepName(int step);
const char* RunningStateName(int running_state);

}  // namespace unit
