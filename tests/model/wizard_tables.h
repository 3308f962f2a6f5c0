#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

// The wizard's controls and the settings of its screens.
namespace tests::model {

// clang-format off
enum Step {
    kPowerOn = -1, kCheckCard, kInsertCard, kUpdating, kWait, kRemoveCard, kResult, kReopen,
    kAnyStep = 99
};
// In the order of creation, which is the order of drawing and of offering touches.
enum Control {
    kTitle, kWarning, kToolVersion, kDvrLine, kLine1, kLine2, kLine3, kLine4, kNotice, kSuspend,
    kNext, kUpdate, kClose, kWizardControls, kOk = kWizardControls, kUpper, kLower, kAllControls
};
enum Timer : unsigned {
    kNotifyTimer = 257, kCardOutTimer, kCardInTimer, kVideoTimer, kRepaintTimer
};
enum CommandId : unsigned { kNextId = 1011, kUpdateId, kSuspendId, kCloseId, kOkId, kAnyId = ~0U };
enum class Screen {
    kPowerOn, kNoCardReport, kCheckCard, kInsertCard, kUpdating, kImageMissing, kWait,
    kRemoveCard, kResult, kSuccess, kFailure, kReopen, kOffline, kNoticeAfterUpdate
};
// clang-format on

inline constexpr unsigned kWhite = 0xFFFFFF;
inline constexpr unsigned kRed = 0x0000FF;
inline constexpr unsigned kBlue = 0xFF0000;

// What a screen sets; everything else stays.
struct Setting {
    Control control;
    const wchar_t* text;  // nullptr: stays
    std::optional<unsigned> color{};
    std::optional<bool> visible{};
};
struct ScreenRow {
    Screen screen;
    std::array<const wchar_t*, 4> lines;  // the texts from kLine1 on; nullptr: stays
    std::vector<Setting> others;
};
std::span<const ScreenRow> Screens();

// A control at its creation.
struct ControlRow {
    long left, top, right, bottom;
    unsigned id;  // 0: a label
    const wchar_t* text;
    unsigned color;
    bool visible;
};
std::span<const ControlRow> Controls();

}  // namespace tests::model
