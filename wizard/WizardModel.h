#pragma once

#include <windows.h>

// The wizard's steps. CMainFrame::m_nStep holds one of them as a plain number.
enum WizardStep : int {
    STEP_POWER_ON = -1,
    STEP_CHECK_CARD = 0,
    STEP_INSERT_CARD = 1,
    STEP_UPDATING = 2,
    STEP_WAIT = 3,
    STEP_REMOVE_CARD = 4,
    STEP_RESULT = 5,
    STEP_REOPEN = 6,
};

// The main frame's window timers.
enum WizardTimer : UINT {
    TIMER_NOTIFY = 257,
    TIMER_WAIT_CARD_OUT = 258,
    TIMER_WAIT_CARD_IN = 259,
    TIMER_COMPOSITE_VIDEO = 260,
    TIMER_REPAINT = 261,
};

// The main frame's buttons, as wParam of WM_XCOMMAND.
enum WizardCommand : UINT {
    IDC_BTN_NEXT = 1011,
    IDC_BTN_UPDATE = 1012,
    IDC_BTN_SUSPEND = 1013,
    IDC_BTN_CLOSE = 1014,
};

// The frame's menu commands, as wParam of WM_COMMAND. The frame has no menu; other code may send
// them.
enum FrameCommand : WORD {
    ID_FILE_NEW = 0xE100,
    ID_APP_ABOUT = 0xE140,
    ID_APP_EXIT = 0xE141,
};

// The running state that the DVR reports.
enum DvrRunningState : BYTE {
    DVR_RUNNING_STATE_INITIALIZING = 0,
    DVR_RUNNING_STATE_INIT_OK = 1,
    DVR_RUNNING_STATE_NORMAL = 2,
    DVR_RUNNING_STATE_REBOOTTING = 3,
    DVR_RUNNING_STATE_SHUTDOWNING = 4,
};

// The state of its storage card that the DVR reports.
enum DvrStorageCard : BYTE {
    DVR_STORAGE_CARD_PLUG_OUT = 0,
    DVR_STORAGE_CARD_PLUG_IN = 1,
    DVR_STORAGE_CARD_BROKEN = 2,
    DVR_STORAGE_CARD_FORMATING = 3,
    DVR_STORAGE_CARD_SPACE_FULL_NORMAL_FILE = 4,
    DVR_STORAGE_CARD_SPACE_FULL_EVENT_FILE = 5,
    DVR_STORAGE_CARD_SPACE_FULL_BOTH_FILE = 6,
};

// CMainFrame::m_byCardStatus before the DVR has reported its card for the first time.
inline constexpr BYTE kCardStatusUnknown = 0xFF;

inline constexpr int kScreenWidth = 800;
inline constexpr int kScreenHeight = 480;

inline constexpr COLORREF kWhite = RGB(255, 255, 255);
inline constexpr COLORREF kRed = RGB(255, 0, 0);
inline constexpr COLORREF kBlue = RGB(0, 0, 255);
inline constexpr COLORREF kBlack = RGB(0, 0, 0);

inline constexpr int kCentred = DT_CENTER | DT_VCENTER | DT_WORDBREAK;
inline constexpr int kLeft = DT_VCENTER | DT_WORDBREAK;

static_assert(kRed == 0x0000FF && kBlue == 0xFF0000);
static_assert(kCentred == 21 && kLeft == 20);

// The size and weight of a control's font, whose face and character set follow.
struct WizardFont {
    int width;
    int height;
    int weight;
};
inline constexpr wchar_t kFontFace[] = L"Arial";
inline constexpr int kFontCharSet = DEFAULT_CHARSET;
