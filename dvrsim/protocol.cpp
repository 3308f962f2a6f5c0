#include "dvrsim/protocol.h"

#include <algorithm>
#include <cctype>
#include <iterator>

namespace dvrsim {
namespace {

// In numerical order from kFirstCommand, without gaps.
constexpr std::string_view kNames[] = {
    "DVR_RunningState",
    "DVR_Mode",
    "Video_Resolution",
    "Video_TimeStamp",
    "Video_CycleTime",
    "Video_SoundRecording",
    "Photo_Resolution",
    "Play_DeleteFile",
    "Play_Thumbnail",
    "Play_Volume",
    "Language",
    "Automatic_ShutDown",
    "System_Reboot",
    "Factory_DefaultSetting",
    "Frequency",
    "Time",
    "Key",
    "Play_File",
    "Video_Record",
    "Photo_Capture",
    "AC_LineStatus",
    "BatteryStatus",
    "StorageCardStatus",
    "QueryInformation",
    "QueryFileName",
    "G_Sensor",
    "Normal_REC_Overwrite",
    "Event_REC_Overwrite",
    "Lock_UnLock_File",
    "EventTrigger",
    "FW_Upgrade_Version",
};
static_assert(std::size(kNames) == kLastCommand - kFirstCommand + 1);

constexpr std::string_view NameOf(Command command) {
    return kNames[static_cast<std::uint16_t>(command) - kFirstCommand];
}
static_assert(NameOf(Command::kSystemReboot) == "System_Reboot" &&
              NameOf(Command::kStorageCardStatus) == "StorageCardStatus" &&
              NameOf(Command::kFirmwareUpgradeVersion) == "FW_Upgrade_Version");

bool SameLetters(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](unsigned char left, unsigned char right) {
        return std::tolower(left) == std::tolower(right);
    });
}

}  // namespace

std::string_view CommandName(std::uint16_t code) {
    const unsigned number = code & ~unsigned{kQueryBit};
    if (number < kFirstCommand || number > kLastCommand)
        return {};
    return NameOf(static_cast<Command>(number));
}

std::span<const std::string_view> CommandNames() {
    return kNames;
}

std::optional<Command> CommandNamed(std::string_view name) {
    const auto* found =
        std::ranges::find_if(kNames, [&](std::string_view row) { return SameLetters(row, name); });
    if (found == std::end(kNames))
        return std::nullopt;
    return static_cast<Command>(kFirstCommand + (found - std::begin(kNames)));
}

}  // namespace dvrsim
