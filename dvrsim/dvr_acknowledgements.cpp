#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "dvrsim/dvr.h"

namespace dvrsim {
namespace {

using std::chrono::microseconds;

// The memory of a small controller; it drops further requests.
constexpr std::size_t kMaxPendingRequests = 32;

std::vector<std::uint8_t> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

std::string TwoDigits(unsigned value) {
    std::string text = std::to_string(value % 100);
    return text.size() < 2 ? '0' + text : text;
}

// "20140901090000": the time of the DVR's clock, which shows that time at the host's start.
std::string ClockText(microseconds since_start) {
    using namespace std::chrono;
    const sys_seconds start = sys_days{2014y / September / 1} + hours(9);
    const sys_seconds now = start + floor<seconds>(since_start);
    const year_month_day date{floor<days>(now)};
    const hh_mm_ss time{now - floor<days>(now)};
    return std::to_string(static_cast<int>(date.year())) +
           TwoDigits(static_cast<unsigned>(date.month())) +
           TwoDigits(static_cast<unsigned>(date.day())) +
           TwoDigits(static_cast<unsigned>(time.hours().count())) +
           TwoDigits(static_cast<unsigned>(time.minutes().count())) +
           TwoDigits(static_cast<unsigned>(time.seconds().count()));
}

using namespace std::string_view_literals;

struct PlainRow {
    Command command;
    std::string_view payload;
};

constexpr PlainRow kRows[] = {
    {Command::kVideoResolution, "\x02"sv},
    {Command::kVideoTimeStamp, "\x01"sv},
    {Command::kVideoCycleTime, "\x03"sv},
    {Command::kVideoSoundRecording, "\x01"sv},
    {Command::kPhotoResolution, "\x01"sv},
    {Command::kPlayDeleteFile, "\x00"sv},
    {Command::kPlayThumbnail, "\x00"sv},
    {Command::kPlayVolume, "\x05"sv},
    {Command::kLanguage, "\x01"sv},
    {Command::kAutomaticShutDown, "\x00"sv},
    {Command::kSystemReboot, "\x00"sv},
    {Command::kFactoryDefaultSetting, "\x00"sv},
    {Command::kFrequency, "\x3C"sv},
    {Command::kKey, "\x00"sv},
    {Command::kPlayFile, "\x00"sv},
    {Command::kPhotoCapture, "\x00"sv},
    {Command::kAcLineStatus, "\x01"sv},
    {Command::kBatteryStatus, "\x64"sv},
    {Command::kQueryInformation, "\x01\x00"sv},
    {Command::kQueryFileName, "20140901_090000.MOV"sv},
    {Command::kGSensor, "\x02"sv},
    {Command::kNormalRecordOverwrite, "\x01"sv},
    {Command::kEventRecordOverwrite, "\x00"sv},
    {Command::kLockUnlockFile, "\x00"sv},
    {Command::kEventTrigger, "\x00"sv},
};

static_assert(std::adjacent_find(std::begin(kRows), std::end(kRows),
                                 [](const PlainRow& a, const PlainRow& b) {
                                     return a.command >= b.command;
                                 }) == std::end(kRows));

// The value of an item that does not change in this simulation.
std::string_view PlainAcknowledgement(Command command) {
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [command](const PlainRow& r) { return r.command == command; });
    return row == std::end(kRows) ? "\x00"sv : row->payload;
}

}  // namespace

void Dvr::Receive(std::span<const std::uint8_t> bytes) {
    if (!processor_up_)
        return;
    const std::size_t damaged_before = decoder_.DamagedFrames();
    for (const std::uint8_t byte : bytes) {
        decoder_.Take(byte);
        while (const auto frame = decoder_.Next())
            Accept(*frame);
    }
    damaged_frames_ += decoder_.DamagedFrames() - damaged_before;
}

void Dvr::Accept(const Frame& frame) {
    const unsigned number = frame.code & ~unsigned{kQueryBit};
    if (frame.type != static_cast<std::uint8_t>(FrameType::kRequest) || number < kFirstCommand ||
        number > kLastCommand || pending_requests_ == kMaxPendingRequests)
        return;
    ++pending_requests_;
    // One processor handles the requests one after the other.
    busy_until_ = std::max(busy_until_, host_.Now()) + PickSlowedDelay(timings_.latency);
    actions_.After(busy_until_ - host_.Now(), [this, frame] {
        --pending_requests_;
        Acknowledge(frame);
    });
}

void Dvr::Acknowledge(const Frame& frame) {
    const auto command = static_cast<Command>(frame.code & ~unsigned{kQueryBit});
    if ((frame.code & kQueryBit) != 0) {
        if (const auto payload = QueriedValue(command))
            Transmit(FrameType::kAcknowledgement, frame.code, *payload);
        return;
    }
    const std::uint8_t accepted[] = {0};
    Transmit(FrameType::kAcknowledgement, frame.code, accepted);
    ExecuteOrder(command, frame.payload);
}

std::optional<std::vector<std::uint8_t>> Dvr::QueriedValue(Command command) const {
    switch (command) {
        case Command::kRunningState:
            return {{static_cast<std::uint8_t>(running_state_)}};
        case Command::kMode:
            return {{static_cast<std::uint8_t>(mode_)}};
        case Command::kTime:
            return Bytes(ClockText(host_.Now()));
        case Command::kVideoRecord:
            return RecordPayload();
        case Command::kStorageCardStatus:
            if (!settled_card_ || faults_.silent_card)
                return std::nullopt;
            return {{static_cast<std::uint8_t>(*settled_card_), CardPercent(*settled_card_)}};
        case Command::kFirmwareUpgradeVersion:
            if (faults_.silent_version)
                return std::nullopt;
            return Bytes(std::string_view(faults_.reported_version.value_or(running_version_))
                             .substr(0, kMaxPayloadBytes));
        default:
            return Bytes(PlainAcknowledgement(command));
    }
}

void Dvr::ExecuteOrder(Command command, std::span<const std::uint8_t> payload) {
    if (command == Command::kSystemReboot) {
        Later(timings_.reboot_report, &Dvr::Reboot);
        return;
    }
    if (payload.empty())
        return;
    if (command == Command::kMode && payload[0] <= static_cast<std::uint8_t>(Mode::kPlay)) {
        mode_ = static_cast<Mode>(payload[0]);
        SendIndication(Command::kMode, payload.first(1));
    }
    if (command == Command::kVideoRecord)
        record_wanted_ = payload[0] == 1 || payload[0] == '1';
}

void Dvr::Reboot() {
    // Ends a boot or an update.
    actions_.CancelAll();
    hangs_ = false;
    pending_requests_ = 0;
    SetRunningState(RunningState::kRebooting);
    Later(timings_.reboot, &Dvr::Reset);
}

std::vector<std::uint8_t> Dvr::RecordPayload() const {
    const std::uint32_t seconds = recorded_seconds_;
    const std::string text = std::string(Recording() ? "1" : "0") + '\0' +
                             TwoDigits(seconds / 3600) + TwoDigits(seconds / 60 % 60) +
                             TwoDigits(seconds % 60);
    return Bytes(text);
}

std::uint8_t Dvr::CardPercent(CardStatus status) const {
    switch (status) {
        case CardStatus::kPlugIn:
            return 42;
        case CardStatus::kSpaceFullNormalFile:
        case CardStatus::kSpaceFullEventFile:
        case CardStatus::kSpaceFullBothFile:
            return 100;
        default:
            return 0;
    }
}

}  // namespace dvrsim
