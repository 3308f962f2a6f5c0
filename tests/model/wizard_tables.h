#pragma once

#include <cstddef>
#include <span>
#include <vector>

// The wizard's behaviour as tables: what each event does at each step, and what each screen sets.
namespace tests::model {

enum Step {
    kPowerOn = -1,
    kCheckCard,
    kInsertCard,
    kUpdating,
    kWait,
    kRemoveCard,
    kResult,
    kReopen
};
inline constexpr int kAnyStep = 99;
// The steps from 0 on, for tables.
inline std::size_t IndexOf(int step) {
    return static_cast<std::size_t>(step) + 1;
}
inline constexpr unsigned kAnyId = ~0U;

// In the order of their making, which is that of drawing and of offering touches.
enum Control {
    kTitle,
    kWarning,
    kToolVersion,
    kDvrLine,
    kLine1,
    kLine2,
    kLine3,
    kLine4,
    kNotice,
    kSuspend,
    kNext,
    kUpdate,
    kClose,
    kWizardControls,
    kOk = kWizardControls,
    kUpper,
    kLower,
    kAllControls
};

enum Timer : unsigned {
    kNotifyTimer = 257,
    kCardOutTimer = 258,
    kCardInTimer = 259,
    kVideoTimer = 260,
    kRepaintTimer = 261
};

enum CommandId : unsigned {
    kNextId = 1011,
    kUpdateId = 1012,
    kSuspendId = 1013,
    kCloseId = 1014,
    kOkId = 1015
};

enum class Trigger { kCommand, kTimer, kRunningState, kCard, kPower };

enum class Guard { kAlways, kCardOut, kCardIn, kPercent, kPercent100, kWasOffline };

// What is done, in words of the wizard; each may take one value.
enum class Do {
    kShowNotice,    // unless one is up: puts the notice up and waits until it has gone
    kStep,          // value: the step
    kStepIfImage,   // value: the step, when no percent has come but an image is there
    kNoPercent,     // 0 percent
    kNoVersion,     // forgets the DVR's version
    kNoCardReport,  // forgets that a card report came
    kRunningState,  // value: what the DVR is taken to be in
    kShow,          // value: the control
    kHide,          // value: the control
    kHideThree,     // Next, Update, Suspend
    kOffline,       // the supply is gone: remembers it, and puts up the texts
    kOnline,        // forgets it
    kRepaint,
    kArm100,   // value: the timer
    kArm2000,  // value: the timer
    kKill,     // the timer that fired
    kLogReset,
    kReset,  // of the DVR; a while of waiting when it works
    kVideo,  // starts the composite video, which may wait for its driver
    kSend,   // value: the command to the DVR
    kAwaitCardReport,
    kAwaitPercent,
    kAwaitReboot,  // until the DVR has left that state
    kPause,        // a second
    kSuspendSystem,
    kPostClose,
};

struct Op {
    Do what;
    int value = 0;
};

// The first row that fits is the one that counts.
struct Rule {
    Trigger trigger;
    unsigned id;  // command, timer, or the value that was reported
    int step;
    Guard guard;
    std::vector<Op> ops;
};
std::span<const Rule> Rules();

enum class Screen {
    kPowerOn,
    kNoCardReport,
    kCheckCard,
    kInsertCard,
    kUpdating,
    kImageMissing,
    kWait,
    kRemoveCard,
    kResult,
    kSuccess,
    kFailure,
    kReopen,
    kOffline,
    kNoticeAfterUpdate,
};

inline constexpr unsigned kWhite = 0xFFFFFF;
inline constexpr unsigned kRed = 0x0000FF;
inline constexpr unsigned kBlue = 0xFF0000;

// What a screen sets; everything else stays as it was.
struct Setting {
    enum class What { kText, kColor, kVisible };
    Screen screen;
    Control control;
    What what;
    const wchar_t* text;
    unsigned value;  // colour, or whether visible
};
std::span<const Setting> Settings();

// A control as it is made.
struct ControlRow {
    long left, top, right, bottom;
    unsigned id;  // 0: a label
    const wchar_t* text;
    unsigned color;
    bool visible;
};
std::span<const ControlRow> Controls();

}  // namespace tests::model
