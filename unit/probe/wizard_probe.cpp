#include "unit/probe/wizard_probe.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/kernel_lock.h"
#include "wizard/MainFrm.h"

namespace unit {
namespace {

struct Name {
    int number;
    const char* name;
};

constexpr Name kSteps[] = {
    {STEP_POWER_ON, "power on"},
    {STEP_CHECK_CARD, "check card"},
    {STEP_INSERT_CARD, "insert card"},
    {STEP_UPDATING, "updating"},
    {STEP_WAIT, "wait"},
    {STEP_REMOVE_CARD, "remove card"},
    {STEP_RESULT, "result"},
    {STEP_REOPEN, "reopen"},
};

constexpr Name kRunningStates[] = {
    {DVR_RUNNING_STATE_INITIALIZING, "initializing"},
    {DVR_RUNNING_STATE_INIT_OK, "init ok"},
    {DVR_RUNNING_STATE_NORMAL, "normal"},
    {DVR_RUNNING_STATE_REBOOTTING, "rebooting"},
    {DVR_RUNNING_STATE_SHUTDOWNING, "shutting down"},
};

template <std::size_t kCount>
const char* Find(const Name (&names)[kCount], int number) {
    const Name* const found = std::ranges::find(names, number, &Name::number);
    return found == std::end(names) ? "?" : found->name;
}

std::optional<WizardState> ReadLinkedWizard() {
    const CMainFrame* const frame = g_pMainFrame;
    if (!frame)
        return std::nullopt;
    return WizardState{frame->m_nStep, frame->m_byUpdatePercent, frame->m_byBinVersion,
                       frame->m_byRunningState, frame->m_szDvrVersion.Load().data()};
}

std::function<std::optional<WizardState>()> g_read = ReadLinkedWizard;

}  // namespace

std::optional<WizardState> ReadWizard() {
    // The frame lives on the stack of the window's thread. That thread clears the pointer and then
    // takes this lock several times (to end the receive thread, to destroy the window, to leave its
    // loop) before it destroys the frame: while this function holds the lock, a frame that it found
    // is valid.
    const platform::kernel::KernelLock lock = platform::kernel::LockKernel();
    return g_read();
}

void SetWizardReader(std::function<std::optional<WizardState>()> read) {
    g_read = std::move(read);
}

const char* WizardStepName(int step) {
    return Find(kSteps, step);
}

const char* RunningStateName(int running_state) {
    return Find(kRunningStates, running_state);
}

}  // namespace unit
