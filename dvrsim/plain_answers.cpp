#include "dvrsim/plain_answers.h"

#include <algorithm>
#include <iterator>

namespace dvrsim {
namespace {

using namespace std::string_view_literals;

struct Row {
    Command command;
    std::string_view payload;
};

constexpr Row kRows[] = {
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
                                 [](const Row& a, const Row& b) {
                                     return a.command >= b.command;
                                 }) == std::end(kRows));

}  // namespace

std::string_view PlainAnswer(Command command) {
    const auto* row = std::find_if(std::begin(kRows), std::end(kRows),
                                   [command](const Row& r) { return r.command == command; });
    return row == std::end(kRows) ? "\x00"sv : row->payload;
}

}  // namespace dvrsim
