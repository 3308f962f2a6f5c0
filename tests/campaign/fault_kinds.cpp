#include "platform/kernel/clock.h"
#include "tests/campaign/case.h"
#include "unit/board/power_coordinator.h"
#include "unit/board/program_host.h"
#include "unit/line/fault_text.h"

namespace tests::campaign {

namespace {

template <auto kIndex>
void Request(WizardRun& run) {
    run.unit().power_coordinator().Raise(unit::PowerRequests()[kIndex]);
}

template <char kFirst>
void Hide(WizardRun& run) {
    for (const std::wstring& name : run.unit().drivers().Names())
        if (name[0] == kFirst)
            run.unit().drivers().HideUntil(name, platform::kernel::kNever);
}

void Silence(WizardRun& run) {
    dvrsim::Faults faults = run.unit().dvr().dvr()->GetFaults();
    faults.silent = true;
    run.unit().dvr().dvr()->SetFaults(faults);
}

// One kind a line, whatever its length.
// clang-format off
constexpr FaultKind kKinds[] = {
    {kFails, kCall, nullptr},
    {"drops", kByte, nullptr, "drop bytes to-unit"},
    {"corrupts", kByte, nullptr, "corrupt bytes to-unit"},
    {"splits", kByte, nullptr, "split 300ms bytes to-unit"},
    {"loses-request", kFrame, nullptr, "drop bytes to-dvr"},
    {"dvr-resets", kFrame, [](WizardRun& run) { run.unit().ResetDvr(); }},
    {"dvr-silent", kFrame, Silence},
    {"dvr-off", kFrame, [](WizardRun& run) { run.unit().dvr().dvr()->PowerOff(); }},
    {"unplugged", kFrame, [](WizardRun& run) { run.unit().SetPlugged(false); }},
    {"card-leaves", kFrame, [](WizardRun& run) { run.unit().RemoveCard(); }},
    {"power-goes", kFrame, [](WizardRun& run) { run.unit().SetExternalPower(false); }},
    {"suspend-asked", kFrame, Request<0>},
    {"resume-asked", kFrame, Request<1>},
    {"off-asked", kFrame, Request<2>},
    {kCloses, kFrame, [](WizardRun&) { unit::ProgramHost::CloseWindow(); }},
    {"scaler-vanishes", kFrame, Hide<L'S'>},
    {"reset-vanishes", kFrame, Hide<L'D'>},
};
// clang-format on

}  // namespace

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

}  // namespace tests::campaign
