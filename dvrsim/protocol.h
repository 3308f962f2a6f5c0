#pragma once

#include <cstdint>

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
// Set in a code: the frame asks for the item's value, or answers that question.
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

}  // namespace dvrsim
