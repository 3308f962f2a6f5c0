#include <string>
#include <utility>
#include <vector>

#include "dvrsim/dvr.h"

namespace dvrsim {

void Dvr::StartUpdate(std::string image_version) {
    state_ = State::kUpdating;
    image_version_ = std::move(image_version);
    Later(timings_.first_percent, &Dvr::BeginReports);
}

void Dvr::BeginReports() {
    // The card is reported after the first percent. If it came before, the unit would offer an
    // update that is running already.
    Later(timings_.card_ready, &Dvr::BringCardUp);
    ReportNextPercent();
}

void Dvr::ReportNextPercent() {
    if (state_ != State::kUpdating || TriggersFaultAtPercent())
        return;
    percent_ = NextPercent();
    SendPercent();
    ContinueUpdate();
}

void Dvr::ContinueUpdate() {
    if (TriggersFaultAtPercent())
        return;
    if (percent_ == 100 && !faults_.stuck_at_percent) {
        // No further report: a second 100 would restart the unit's notice.
        state_ = State::kUpdateFinished;
        installed_version_ = image_version_;
        return;
    }
    const std::chrono::microseconds interval = PickDelay(timings_.update) / 99;
    const std::chrono::microseconds variation = interval / 4;
    After(PickDelay({interval - variation, interval + variation}), &Dvr::ReportNextPercent);
}

bool Dvr::TriggersFaultAtPercent() {
    hangs_ = PercentReached(faults_.stop_at_percent);
    if (hangs_)
        return true;
    if (PercentReached(faults_.fail_at_percent)) {
        state_ = State::kUpdateFailed;
        return true;
    }
    if (PercentReached(faults_.reboot_at_percent)) {
        Reboot();
        return true;
    }
    return false;
}

bool Dvr::PercentReached(const std::optional<std::uint8_t>& percent) const {
    return percent && percent_ >= *percent;
}

std::uint8_t Dvr::NextPercent() {
    if (PercentReached(faults_.stuck_at_percent))
        return percent_;
    if (!jumped_back_ && faults_.jump_back && percent_ >= faults_.jump_back->from) {
        jumped_back_ = true;
        return faults_.jump_back->to;
    }
    return static_cast<std::uint8_t>(percent_ + 1);
}

void Dvr::SendPercent() {
    const std::string& version = faults_.reported_image_version.value_or(image_version_);
    std::vector<std::uint8_t> payload{percent_};
    payload.insert(payload.end(), version.begin(), version.end());
    SendIndication(Command::kFirmwareUpgradeVersion, payload);
}

}  // namespace dvrsim
