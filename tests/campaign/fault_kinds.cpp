#include <algorithm>

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
    {kFails, true, false, false, nullptr},
    {"drops", true, true, true, nullptr, "drop bytes to-unit"},
    {"corrupts", true, true, true, nullptr, "corrupt bytes to-unit"},
    {"splits", true, true, true, nullptr, "split 300ms bytes to-unit"},
    {"loses-request", true, true, false, nullptr, "drop bytes to-dvr"},
    {"dvr-resets", true, true, false, [](WizardRun& run) { run.unit().ResetDvr(); }},
    {"dvr-silent", true, true, false, Silence},
    {"dvr-off", true, true, false, [](WizardRun& run) { run.unit().dvr().dvr()->PowerOff(); }},
    {"unplugged", true, true, false, [](WizardRun& run) { run.unit().SetPlugged(false); }},
    {"card-leaves", true, true, false, [](WizardRun& run) { run.unit().RemoveCard(); }},
    {"power-goes", true, true, false, [](WizardRun& run) { run.unit().SetExternalPower(false); }},
    {"suspend-asked", true, true, false, Request<0>},
    {"resume-asked", true, true, false, Request<1>},
    {"off-asked", true, true, false, Request<2>},
    {kCloses, true, true, false, [](WizardRun&) { unit::ProgramHost::CloseWindow(); }},
    {"scaler-vanishes", true, true, false, Hide<L'S'>},
    {"reset-vanishes", true, true, false, Hide<L'D'>},
};
// clang-format on

}  // namespace

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

bool Fits(const FaultKind& kind, Moment moment) {
    switch (moment) {
        case Moment::kCall:
            return kind.at_calls;
        case Moment::kFrame:
            return kind.at_frames;
        case Moment::kByte:
            break;
    }
    return kind.at_bytes;
}

}  // namespace tests::campaign
