#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

namespace dvrsim {

enum class Command : std::uint16_t {
    kRunningState = 0x0010,
    kMode = 0x0011,
    kVideoResolution = 0x0012,
    kVideoTimeStamp = 0x0013,
    kVideoCycleTime = 0x0014,
    kVideoSoundRecording = 0x0015,
    kPhotoResolution = 0x0016,
    kPlayDeleteFile = 0x0017,
    kPlayThumbnail = 0x0018,
    kPlayVolume = 0x0019,
    kLanguage = 0x001A,
    kAutomaticShutDown = 0x001B,
    kSystemReboot = 0x001C,
    kFactoryDefaultSetting = 0x001D,
    kFrequency = 0x001E,
    kTime = 0x001F,
    kKey = 0x0020,
    kPlayFile = 0x0021,
    kVideoRecord = 0x0022,
    kPhotoCapture = 0x0023,
    kAcLineStatus = 0x0024,
    kBatteryStatus = 0x0025,
    kStorageCardStatus = 0x0026,
    kQueryInformation = 0x0027,
    kQueryFileName = 0x0028,
    kGSensor = 0x0029,
    kNormalRecordOverwrite = 0x002A,
    kEventRecordOverwrite = 0x002B,
    kLockUnlockFile = 0x002C,
    kEventTrigger = 0x002D,
    kFirmwareUpgradeVersion = 0x002E,
};

inline constexpr std::uint16_t kFirstCommand = 0x0010;
inline constexpr std::uint16_t kLastCommand = 0x002E;
// Set in a code: the frame queries the item's value, or acknowledges such a query.
inline constexpr std::uint16_t kQueryBit = 0x8000;

enum class RunningState : std::uint8_t {
    kInitializing = 0,
    kInitOk = 1,
    kNormal = 2,
    kRebooting = 3,
    kShuttingDown = 4,
};

enum class CardStatus : std::uint8_t {
    kPlugOut = 0,
    kPlugIn = 1,
    kBroken = 2,
    kFormatting = 3,
    kSpaceFullNormalFile = 4,
    kSpaceFullEventFile = 5,
    kSpaceFullBothFile = 6,
};

enum class Mode : std::uint8_t { kVideo = 0, kPhoto = 1, kPlay = 2 };

// The protocol's name of a command, with or without kQueryBit ("StorageCardStatus"); empty for an
// unknown code.
std::string_view CommandName(std::uint16_t code);

// The command of that name; ignores case.
std::optional<Command> CommandNamed(std::string_view name);
std::span<const std::string_view> CommandNames();

// The words for the values in commands and in the state, in numerical order from 0.
inline constexpr std::string_view kRunningStateNames[] = {"initializing", "init-ok", "normal",
                                                          "rebooting", "shutting-down"};
inline constexpr std::string_view kCardStatusNames[] = {
    "plug-out", "plug-in", "broken", "formatting", "full-normal", "full-event", "full-both"};
inline constexpr std::string_view kModeNames[] = {"video", "photo", "play"};

static_assert(std::size(kRunningStateNames) == static_cast<int>(RunningState::kShuttingDown) + 1);
static_assert(std::size(kCardStatusNames) == static_cast<int>(CardStatus::kSpaceFullBothFile) + 1);
static_assert(std::size(kModeNames) == static_cast<int>(Mode::kPlay) + 1);

constexpr std::span<const std::string_view> NamesOf(RunningState) {
    return kRunningStateNames;
}
constexpr std::span<const std::string_view> NamesOf(CardStatus) {
    return kCardStatusNames;
}
constexpr std::span<const std::string_view> NamesOf(Mode) {
    return kModeNames;
}

// "unknown" for a number that is not a value.
template <class Value>
constexpr std::string_view NameOf(Value value) {
    const auto names = NamesOf(value);
    const auto index = static_cast<std::size_t>(value);
    return index < names.size() ? names[index] : "unknown";
}

template <class Value>
constexpr std::optional<Value> ValueNamed(std::string_view name) {
    const auto names = NamesOf(Value{});
    for (std::size_t index = 0; index < names.size(); ++index)
        if (names[index] == name)
            return static_cast<Value>(index);
    return std::nullopt;
}

}  // namespace dvrsim
