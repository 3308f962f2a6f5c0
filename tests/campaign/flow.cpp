#include "tests/campaign/flow.h"

namespace tests::campaign {

namespace {

using namespace std::chrono_literals;
using End = CarDriver::End;
using Options = unit::VirtualUnit::Options;
using dvrsim::Faults;

std::optional<End> Drive(WizardRun&, CarDriver& driver) {
    return driver.Drive(kLongestDrive);
}

void AsItIs(Options&) {}

void Quick(Options& options) {
    ShortenUpdate(options.dvr.dvr.timings, options.dvr.dvr.faults);
}

template <bool Faults::*kFault>
void With(Options& options) {
    Quick(options);
    options.dvr.dvr.faults.*kFault = true;
}

void Hanging(Options& options) {
    Quick(options);
    options.dvr.dvr.faults.stop_at_percent = 40;
}

void Flooding(Options& options) {
    Quick(options);
    options.dvr.dvr.faults.card_report_interval = 200ms;
}

void OnBattery(Options& options) {
    Quick(options);
    options.external_power = false;
}

template <char kFirst, char kSecond>
void Without(Options& options) {
    Quick(options);
    const std::wstring_view drivers[] = {L"COM9:", L"DVR1:", L"SCA0:"};
    for (const std::wstring_view driver : drivers)
        if (driver[0] == kFirst && driver[1] == kSecond)
            options.missing_drivers = {std::wstring(driver)};
}

std::optional<End> DriveWithoutImage(WizardRun&, CarDriver& driver) {
    driver.ForgetImageOnce();
    return driver.Drive(kLongestDrive);
}

std::optional<End> DriveFromBlankCard(WizardRun& run, CarDriver& driver) {
    run.unit().InsertCard("/");
    return driver.Drive(kLongestDrive);
}

// Something happens in the middle of the update, and the drive goes on.
template <auto kEvent>
std::optional<End> DriveUntilUpdating(WizardRun& run, CarDriver& driver) {
    const auto end = driver.Drive(kLongestDrive, [&] {
        return !run.screen().TextStartingWith(L"Update Percent : ").empty();
    });
    if (end || !run.unit().program().running())
        return end;
    kEvent(run, driver);
    return driver.Drive(kLongestDrive);
}

void LosePower(WizardRun&, CarDriver& driver) {
    driver.CyclePower();
}

void Reboot(WizardRun& run, CarDriver&) {
    run.unit().dvr().dvr()->RebootItself();
}

std::optional<End> DriveFromBattery(WizardRun& run, CarDriver& driver) {
    run.RunFor(3s);
    run.unit().SetExternalPower(true);
    return driver.Drive(kLongestDrive);
}

// One flow a line, whatever its length.
// clang-format off
constexpr Flow kFlows[] = {
    {"normal", End::kSuccess, AsItIs, Drive},
    {"quick", End::kSuccess, Quick, Drive},
    {"image-missing", End::kSuccess, Quick, DriveWithoutImage},
    {"card-in", End::kSuccess, Quick, DriveFromBlankCard},
    {"no-card-report", End::kError, With<&Faults::silent_card>, Drive},
    {"no-version", End::kFailure, With<&Faults::silent_version>, Drive},
    {"silent", End::kError, With<&Faults::silent>, Drive},
    {"update-hangs", End::kStandstill, Hanging, Drive},
    {"indication-flood", End::kSuccess, Flooding, Drive},
    {"power-lost", End::kSuccess, Quick, DriveUntilUpdating<LosePower>},
    {"dvr-reboots", End::kSuccess, Quick, DriveUntilUpdating<Reboot>},
    {"power-off-at-start", End::kSuccess, OnBattery, DriveFromBattery},
    {"no-link", End::kError, Without<'C', 'O'>, Drive},
    {"no-reset", End::kStandstill, Without<'D', 'V'>, Drive},
    {"no-scaler", End::kSuccess, Without<'S', 'C'>, Drive},
};
// clang-format on

}  // namespace

std::span<const Flow> Flows() {
    return kFlows;
}

void ShortenUpdate(dvrsim::Timings& timings, dvrsim::Faults& faults) {
    timings.update = dvrsim::Milliseconds(28000, 32000);
    faults.jump_back = dvrsim::PercentJump{3, 96};
}

}  // namespace tests::campaign
