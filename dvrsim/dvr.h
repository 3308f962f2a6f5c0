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

// A simulated dash camera at the end of a serial line. It only reacts to these calls and to its
// host's timers, all on the host's thread. With the same seed, the same calls at the same times
// give the same bytes at the same times. It starts without power; its firmware version survives
// resets and power cycles.
class Dvr {
  public:
    enum class State {
        kOff,
        kBooting,
        kNormal,
        kUpdating,
        kUpdateFinished,  // waits for a reset without the card
        kUpdateFailed,    // the card was removed, or a fault; waits for a reset
    };

    explicit Dvr(Host& host, Options options = {});

    // Calls that change nothing, and a reset without power, are ignored.
    void PowerOn();
    void PowerOff();
    void Reset();
    // The DVR reports that it reboots and resets itself. Ignored while its processor is not up.
    void RebootItself();

    // Receives bytes from the line, in chunks of any size. Drops them while the processor is not
    // up.
    void Receive(std::span<const std::uint8_t> bytes);

    // Inserts a card with the content of the folder. Returns false if a card is in already.
    bool InsertCard(std::filesystem::path folder);
    // Returns false if no card is in.
    bool RemoveCard();

    // Reports that status now. A status above kPlugIn also becomes the condition of the card in the
    // slot; kPlugOut and kPlugIn are only reported, true or not.
    void ReportCard(CardStatus status);

    // Sends an indication without changing the DVR's state. Throws std::length_error if the payload
    // is too long for a frame.
    void Indicate(std::uint16_t code, std::span<const std::uint8_t> payload);

    // An update that hangs continues when the new faults no longer stop it.
    void SetFaults(const Faults& faults);
    const Faults& GetFaults() const { return faults_; }
    // Affects delays that start from now on, including that before an update's next report.
    void SetTimings(const Timings& timings) { timings_ = timings; }
    const Timings& GetTimings() const { return timings_; }
    // Sets both the installed and the running version.
    void SetFirmwareVersion(const std::string& version);

    State GetState() const { return state_; }
    RunningState GetRunningState() const { return running_state_; }
    Mode GetMode() const { return mode_; }
    // The running version. A reset starts the installed one.
    const std::string& FirmwareVersion() const { return running_version_; }
    const std::string& InstalledVersion() const { return installed_version_; }
    // The last reported percent since the last reset, or 0.
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
    // After a report, or when the fault ends that made the update hang.
    void ContinueUpdate();
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

    // Kept over a reset.
    std::string installed_version_;
    StorageCard card_;
    std::size_t damaged_frames_ = 0;

    // Cleared by a reset, a power cycle or a boot.
    State state_ = State::kOff;
    RunningState running_state_ = RunningState::kInitializing;
    Mode mode_ = Mode::kVideo;
    std::string running_version_;
    std::string image_version_;
    std::uint8_t percent_ = 0;
    bool jumped_back_ = false;
    bool hangs_ = false;
    bool processor_up_ = false;
    std::optional<CardStatus> settled_card_;  // empty until the card driver is up
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
