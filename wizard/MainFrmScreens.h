#pragma once

#include <windows.h>

#include <variant>

#include "wizard/WizardModel.h"

// The screens that the wizard can put up. A screen sets only what its rows name; everything else
// stays as an earlier screen left it.
enum class ScreenId {
    kPowerOn,
    kNoCardReport,
    kCheckCard,
    kInsertCard,
    kUpdating,
    kImageMissing,
    kWait,
    kRemoveCard,
    kResult,
    kResultSuccess,
    kResultFailure,
    kReopen,
    kPowerOffline,
};

// The controls that screens change.
enum class ControlId {
    kDvrVersion,
    kLine1,
    kLine2,
    kLine3,
    kLine4,
    kNotice,
    kNext,
    kUpdate,
    kSuspend,
    kClose,
};

struct TextSetting {
    const wchar_t* text;
    int format;
};
struct ColorSetting {
    COLORREF color;
};
struct VisibleSetting {
    BOOL visible;
};
using ScreenSetting = std::variant<TextSetting, WizardFont, ColorSetting, VisibleSetting>;

struct ScreenRow {
    ScreenId screen;
    ControlId control;
    ScreenSetting setting;
};
