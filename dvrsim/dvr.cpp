#include "dvrsim/dvr.h"

#include <algorithm>
#include <utility>

namespace dvrsim {

using std::chrono::microseconds;

Dvr::Dvr(Host& host, Options options)
    : host_(host),
      timings_(options.timings),
      faults_(options.faults),
      random_(options.seed),
      installed_version_(std::move(options.firmware_version)),
      running_version_(installed_version_),
      actions_(host) {}

void Dvr::PowerOn() {
    if (state_ == State::kOff)
        Boot();
}

void Dvr::PowerOff() {
    Halt();
    state_ = State::kOff;
}

void Dvr::Reset() {
    if (state_ != State::kOff)
        Boot();
}

void Dvr::RebootItself() {
    if (processor_up_)
        Reboot();
}

void Dvr::SetFirmwareVersion(const std::string& version) {
    installed_version_ = version;
    running_version_ = version;
}

void Dvr::SetFaults(const Faults& faults) {
    const bool other_interval = faults.card_report_interval != faults_.card_report_interval;
    faults_ = faults;
    if (hangs_ && state_ == State::kUpdating && !PercentReached(faults_.stop_at_percent))
        ContinueUpdate();
    if (other_interval && settled_card_)
        ScheduleCardRepeat();
}

void Dvr::Halt() {
    actions_.CancelAll();
    processor_up_ = false;
    running_state_ = RunningState::kInitializing;
    mode_ = Mode::kVideo;
    percent_ = 0;
    jumped_back_ = false;
    hangs_ = false;
    settled_card_.reset();
    record_wanted_ = true;
    recorded_seconds_ = 0;
    decoder_ = {};
    pending_requests_ = 0;
    busy_until_ = microseconds::zero();
}

void Dvr::Boot() {
    Halt();
    state_ = State::kBooting;
    running_version_ = installed_version_;
    Later(timings_.cpu_up, &Dvr::ComeUp);
}

void Dvr::ComeUp() {
    processor_up_ = true;
    SetRunningState(RunningState::kInitializing);
    Later(timings_.card_look, &Dvr::LookForImage);
}

void Dvr::LookForImage() {
    if (auto version = card_.ImageVersion()) {
        StartUpdate(*std::move(version));
        return;
    }
    Later(timings_.card_ready, &Dvr::BringCardUp);
}

void Dvr::BringCardUp() {
    settled_card_ = card_.Status();
    RepeatCardReport();
    if (state_ == State::kBooting)
        Later(timings_.init_ok, &Dvr::EnterInitOk);
}

void Dvr::EnterInitOk() {
    SetRunningState(RunningState::kInitOk);
    Later(timings_.normal, &Dvr::EnterNormal);
}

void Dvr::EnterNormal() {
    state_ = State::kNormal;
    SetRunningState(RunningState::kNormal);
    After(PickDelay(timings_.record_tick), &Dvr::TickRecording);
}

bool Dvr::InsertCard(std::filesystem::path folder) {
    if (card_.In())
        return false;
    card_.Insert(std::move(folder));
    RestartCardSettling();
    return true;
}

bool Dvr::RemoveCard() {
    if (!card_.In())
        return false;
    card_.Remove();
    if (state_ == State::kUpdating)
        state_ = State::kUpdateFailed;
    RestartCardSettling();
    return true;
}

void Dvr::RestartCardSettling() {
    actions_.Cancel(card_settle_key_);
    card_settle_key_ = Later(timings_.card_settle, &Dvr::SettleCard);
}

void Dvr::SettleCard() {
    if (!settled_card_ || *settled_card_ == card_.Status())
        return;
    settled_card_ = card_.Status();
    SendCardIndication(*settled_card_);
}

void Dvr::RepeatCardReport() {
    SendCardIndication(*settled_card_);
    ScheduleCardRepeat();
}

void Dvr::ScheduleCardRepeat() {
    actions_.Cancel(card_repeat_key_);
    if (const auto interval = faults_.card_report_interval)
        card_repeat_key_ = After(std::max(*interval, microseconds(1)), &Dvr::RepeatCardReport);
}

void Dvr::ReportCard(CardStatus status) {
    if (status > CardStatus::kPlugIn) {
        card_.SetCondition(status);
        if (settled_card_ && card_.In())
            settled_card_ = status;
    }
    SendCardIndication(status);
}

bool Dvr::Recording() const {
    return running_state_ == RunningState::kNormal && settled_card_ == CardStatus::kPlugIn &&
           mode_ == Mode::kVideo && record_wanted_;
}

void Dvr::TickRecording() {
    After(PickDelay(timings_.record_tick), &Dvr::TickRecording);
    const bool stopped = recorded_seconds_ > 0 && !Recording();
    if (!Recording() && !stopped)
        return;
    recorded_seconds_ = stopped ? 0 : recorded_seconds_ + 1;
    SendIndication(Command::kVideoRecord, RecordPayload());
}

void Dvr::SetRunningState(RunningState state) {
    running_state_ = state;
    const std::uint8_t payload[] = {static_cast<std::uint8_t>(state)};
    SendIndication(Command::kRunningState, payload);
}

void Dvr::SendCardIndication(CardStatus status) {
    if (faults_.silent_card)
        return;
    const std::uint8_t payload[] = {static_cast<std::uint8_t>(status), 0, CardPercent(status)};
    SendIndication(Command::kStorageCardStatus, payload);
}

void Dvr::Indicate(std::uint16_t code, std::span<const std::uint8_t> payload) {
    for (unsigned copy = 0; copy < faults_.indication_copies; ++copy)
        Transmit(FrameType::kIndication, code, payload);
}

void Dvr::SendIndication(Command command, std::span<const std::uint8_t> payload) {
    Indicate(static_cast<std::uint16_t>(command), payload);
}

void Dvr::Transmit(FrameType type, std::uint16_t code, std::span<const std::uint8_t> payload) {
    const std::vector<std::uint8_t> bytes = EncodeFrame(type, code, payload);
    if (processor_up_ && !faults_.silent)
        host_.Transmit(bytes);
}

microseconds Dvr::PickDelay(const DelayRange& range) {
    // The distributions of the standard library differ between implementations.
    const auto width = std::max<microseconds::rep>(0, (range.most - range.least).count());
    const auto offset = static_cast<microseconds::rep>(random_() % (width + 1));
    return std::max(range.least + microseconds(offset), microseconds(1));
}

}  // namespace dvrsim
