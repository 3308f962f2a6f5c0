#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "dvrsim/frame_codec.h"
#include "dvrsim/host.h"
#include "dvrsim/options.h"
#include "dvrsim/protocol.h"
#include "dvrsim/storage_card.h"

namespace dvrsim {

// A dash camera at the other end of a serial line. It does nothing but react to these calls and to
// the actions it has asked of its host, all on the host's one thread; the same seed and calls at
// the same times give the same bytes at the same times. Off when made; its firmware version
// outlives resets and power cycles.
class Dvr {
  public:
    enum class State {
        kOff,
        kBooting,
        kNormal,
        kUpdating,
        kUpdateFinished,  // waits for the card to leave and for a reset
        kUpdateFailed,    // the card was pulled, or a fault; only a reset helps
    };

    explicit Dvr(Host& host, Options options = {});

    // On when on, off when off: nothing. A reset without power: nothing.
    void PowerOn();
    void PowerOff();
    void Reset();
    // The DVR says that it reboots, and resets itself. Nothing while its processor is not up.
    void RebootItself();

    // Bytes came in on the line, in any grouping. Lost while the processor is not up.
    void Receive(std::span<const std::uint8_t> bytes);

    // A card whose content is the folder. False when a card is in already, or none to take out.
    bool InsertCard(std::filesystem::path folder);
    bool RemoveCard();

    // Reports that status now. One above kPlugIn also becomes the condition of the card that is in;
    // kPlugOut and kPlugIn are reported as told, true or not, and nothing else follows from them.
    void ReportCard(CardStatus status);

    // Sends any other indication, which means nothing to the DVR itself. Throws std::length_error
    // for a payload that fits no frame.
    void Indicate(std::uint16_t code, std::span<const std::uint8_t> payload);

    void SetFaults(const Faults& faults);
    const Faults& GetFaults() const { return faults_; }
    // For what begins from now on; an update's next report begins anew.
    void SetTimings(const Timings& timings) { timings_ = timings; }
    const Timings& GetTimings() const { return timings_; }
    // The firmware that is installed and runs, as if the DVR had left the factory with it.
    void SetFirmwareVersion(const std::string& version);

    State GetState() const { return state_; }
    RunningState GetRunningState() const { return running_state_; }
    Mode GetMode() const { return mode_; }
    // Of the firmware that runs; a new one runs from the reset after its update.
    const std::string& FirmwareVersion() const { return running_version_; }
    const std::string& InstalledVersion() const { return installed_version_; }
    // Last reported since the last reset, 0 when none was.
    int Percent() const { return percent_; }
    bool CardIn() const { return card_.In(); }
    const StorageCard& Card() const { return card_; }
    bool Recording() const;
    // Whether the composite output carries a picture.
    bool HasPicture() const {
        return state_ != State::kOff && running_state_ != RunningState::kInitializing;
    }
    std::size_t DamagedFrames() const { return damaged_frames_; }

  private:
    void Boot();
    void Halt();
    void ComeUp();
    void LookForImage();
    void BringCardUp();
    void EnterInitOk();
    void EnterNormal();

    void StartUpdate(std::string image_version);
    void BeginReports();
    void ReportNextPercent();
    bool TriggersFaultAtPercent();
    bool PercentReached(const std::optional<std::uint8_t>& percent) const;
    std::uint8_t NextPercent();
    void SendPercent();

    void Accept(const Frame& frame);
    void Acknowledge(const Frame& frame);
    std::optional<std::vector<std::uint8_t>> QueriedValue(Command command) const;
    void ExecuteOrder(Command command, std::span<const std::uint8_t> payload);
    void Reboot();

    void RestartCardSettling();
    void SettleCard();
    void RepeatCardReport();
    void ScheduleCardRepeat();
    void TickRecording();
    std::vector<std::uint8_t> RecordPayload() const;
    std::uint8_t CardPercent(CardStatus status) const;

    void SetRunningState(RunningState state);
    void SendIndication(Command command, std::span<const std::uint8_t> payload);
    void SendCardIndication(CardStatus status);
    void Transmit(FrameType type, std::uint16_t code, std::span<const std::uint8_t> payload);

    std::chrono::microseconds PickDelay(const DelayRange& range);
    std::chrono::microseconds PickSlowedDelay(const DelayRange& range) {
        return PickDelay(range) * faults_.slow_factor;
    }
    template <typename Method>
    std::uint64_t After(std::chrono::microseconds delay, Method method) {
        return actions_.After(delay, [this, method] { (this->*method)(); });
    }
    template <typename Method>
    std::uint64_t Later(const DelayRange& range, Method method) {
        return After(PickSlowedDelay(range), method);
    }

    Host& host_;
    Timings timings_;
    Faults faults_;
    std::mt19937 random_;

    // Survive a reset.
    std::string installed_version_;
    StorageCard card_;
    std::size_t damaged_frames_ = 0;

    // Of the time since the last reset.
    State state_ = State::kOff;
    RunningState running_state_ = RunningState::kInitializing;
    Mode mode_ = Mode::kVideo;
    std::string running_version_;
    std::string image_version_;
    std::uint8_t percent_ = 0;
    bool jumped_back_ = false;
    bool processor_up_ = false;
    std::optional<CardStatus> settled_card_;  // empty until the card subsystem is up
    std::uint64_t card_settle_key_ = 0;
    std::uint64_t card_repeat_key_ = 0;
    bool record_wanted_ = true;
    std::uint32_t recorded_seconds_ = 0;
    FrameDecoder decoder_;
    std::size_t pending_requests_ = 0;
    std::chrono::microseconds busy_until_{};

    ScheduledActions actions_;
};

// The words for a state, as NameOf() in protocol.h gives them.
inline constexpr std::string_view kStateNames[] = {"off",      "booting",         "normal",
                                                   "updating", "update-finished", "update-failed"};
static_assert(std::size(kStateNames) == static_cast<int>(Dvr::State::kUpdateFailed) + 1);
constexpr std::span<const std::string_view> NamesOf(Dvr::State) {
    return kStateNames;
}

}  // namespace dvrsim
