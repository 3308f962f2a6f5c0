#include "tests/model/wizard_tables.h"

namespace tests::model {
namespace {

// clang-format off
using enum Do;
using T = Trigger;
using G = Guard;

const Rule kRules[] = {
    {T::kCommand, kNextId, kPowerOn, G::kAlways,
     {{kShowNotice}, {kNoPercent}, {kHideThree}, {kNoCardReport}, {kNoVersion}, {kReset}, {kArm100, kVideoTimer},
      {kAwaitCardReport}, {kStep, kCheckCard}, {kRepaint}, {kSend, 0x802E}, {kSend, 0x8026}}},
    {T::kCommand, kNextId, kCheckCard, G::kAlways,
     {{kNoPercent}, {kStep, kInsertCard}, {kHideThree}, {kRepaint}, {kReset}, {kArm100, kVideoTimer}}},
    {T::kCommand, kNextId, kRemoveCard, G::kAlways,
     {{kNoPercent}, {kNoVersion}, {kHideThree}, {kReset}, {kArm100, kVideoTimer}, {kRepaint}}},
    {T::kCommand, kNextId, kAnyStep, G::kAlways, {}},
    {T::kCommand, kUpdateId, kCheckCard, G::kCardOut,
     {{kStep, kInsertCard}, {kHideThree}, {kRepaint}, {kReset}, {kArm100, kVideoTimer}}},
    {T::kCommand, kUpdateId, kCheckCard, G::kAlways, {}},
    {T::kCommand, kUpdateId, kInsertCard, G::kPercent, {{kHideThree}, {kRepaint}}},
    {T::kCommand, kUpdateId, kInsertCard, G::kAlways,
     {{kStep, kUpdating}, {kHideThree}, {kLogReset}, {kReset}, {kAwaitPercent}, {kStepIfImage, kResult}, {kRepaint}}},
    {T::kCommand, kUpdateId, kUpdating, G::kAlways, {}},
    {T::kCommand, kUpdateId, kWait, G::kAlways, {}},
    {T::kCommand, kUpdateId, kRemoveCard, G::kAlways, {}},
    {T::kCommand, kUpdateId, kResult, G::kPercent100,
     {{kHide, kSuspend}, {kHide, kUpdate}, {kStep, kReopen}, {kRepaint}, {kSend, 0x001C}, {kRunningState, 3},
      {kNoVersion}, {kRepaint}, {kAwaitReboot}, {kPause}, {kSend, 0x802E}}},
    {T::kCommand, kUpdateId, kResult, G::kAlways, {{kHide, kSuspend}, {kHide, kUpdate}, {kRepaint}}},
    {T::kCommand, kUpdateId, kReopen, G::kAlways, {{kHide, kSuspend}, {kHide, kUpdate}, {kRepaint}}},
    {T::kCommand, kUpdateId, kAnyStep, G::kAlways, {{kHideThree}, {kRepaint}}},
    {T::kCommand, kSuspendId, kResult, G::kAlways,
     {{kNoVersion}, {kStep, kReopen}, {kHideThree}, {kRepaint}, {kSuspendSystem}}},
    {T::kCommand, kSuspendId, kAnyStep, G::kAlways, {{kHideThree}, {kRepaint}}},
    {T::kCommand, kCloseId, kAnyStep, G::kAlways, {{kPostClose}}},
    {T::kCommand, kAnyId, kAnyStep, G::kAlways, {}},

    {T::kTimer, kNotifyTimer, kWait, G::kAlways,
     {{kKill}, {kShowNotice}, {kStep, kRemoveCard}, {kShow, kNext}, {kHide, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kTimer, kCardOutTimer, kCheckCard, G::kCardOut,
     {{kKill}, {kShow, kNext}, {kHide, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kTimer, kCardOutTimer, kCheckCard, G::kAlways, {}},
    {T::kTimer, kCardInTimer, kInsertCard, G::kCardIn,
     {{kKill}, {kHide, kNext}, {kShow, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kTimer, kCardInTimer, kInsertCard, G::kAlways, {}},
    {T::kTimer, kVideoTimer, kCheckCard, G::kCardOut, {{kKill}, {kHideThree}, {kRepaint}, {kVideo}}},
    {T::kTimer, kVideoTimer, kCheckCard, G::kAlways, {{kKill}}},
    {T::kTimer, kVideoTimer, kUpdating, G::kAlways, {{kKill}}},
    {T::kTimer, kVideoTimer, kWait, G::kAlways, {{kKill}}},
    {T::kTimer, kVideoTimer, kAnyStep, G::kAlways, {{kKill}, {kHideThree}, {kRepaint}, {kVideo}}},
    {T::kTimer, kRepaintTimer, kAnyStep, G::kAlways, {{kKill}, {kRepaint}}},
    {T::kTimer, kAnyId, kAnyStep, G::kAlways, {{kKill}}},

    {T::kRunningState, 2, kCheckCard, G::kAlways, {{kRepaint}}},
    {T::kRunningState, 2, kInsertCard, G::kAlways, {{kArm100, kCardInTimer}}},
    {T::kRunningState, 2, kRemoveCard, G::kAlways,
     {{kStep, kResult}, {kHide, kNext}, {kHide, kUpdate}, {kArm2000, kRepaintTimer}}},
    {T::kRunningState, kAnyId, kAnyStep, G::kAlways, {}},

    {T::kCard, 0, kCheckCard, G::kAlways, {{kShow, kNext}, {kHide, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kCard, 0, kInsertCard, G::kAlways, {{kHide, kNext}, {kHide, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kCard, 0, kWait, G::kAlways, {{kShow, kNext}, {kHide, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kCard, 0, kReopen, G::kAlways, {{kArm100, kVideoTimer}}},
    {T::kCard, 1, kCheckCard, G::kAlways, {{kHide, kUpdate}, {kHide, kNext}, {kRepaint}, {kArm100, kCardOutTimer}}},
    {T::kCard, 1, kInsertCard, G::kAlways, {{kHide, kNext}, {kShow, kUpdate}, {kHide, kSuspend}, {kRepaint}}},
    {T::kCard, 1, kReopen, G::kAlways, {{kArm100, kVideoTimer}}},
    {T::kCard, kAnyId, kAnyStep, G::kAlways, {}},

    {T::kPower, 0, kAnyStep, G::kAlways, {{kHideThree}, {kOffline}, {kRepaint}}},
    {T::kPower, 1, kAnyStep, G::kWasOffline,
     {{kStep, kPowerOn}, {kOnline}, {kNoPercent}, {kNoVersion}, {kShow, kNext}, {kHide, kClose}, {kHide, kUpdate},
      {kRepaint}}},
    {T::kPower, kAnyId, kAnyStep, G::kAlways, {}},
};

using S = Screen;
constexpr Setting SetText(S screen, Control control, const wchar_t* text) {
    return {screen, control, Setting::What::kText, text, 0};
}
constexpr Setting SetColor(S screen, Control control, unsigned color) {
    return {screen, control, Setting::What::kColor, nullptr, color};
}
constexpr Setting SetVisible(S screen, Control control, bool visible) {
    return {screen, control, Setting::What::kVisible, nullptr, visible};
}

constexpr wchar_t kPressClose[] = L"画面右上の終了ボタンを押下して下さい。";
constexpr wchar_t kTakeOut[] = L"SDカードを抜いて下さい。";

constexpr Setting kSettings[] = {
    SetText(S::kPowerOn, kDvrLine, L"DVR : 読み込み中"),
    SetText(S::kPowerOn, kLine1, L"1. 本体に外部電源を接続して下さい。"),
    SetText(S::kPowerOn, kLine2, L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。"),
    SetText(S::kPowerOn, kLine3, L""),
    SetColor(S::kPowerOn, kLine2, kRed),
    SetText(S::kPowerOn, kNext, L"Power On"),
    SetText(S::kPowerOn, kLine4, L"\"Power On\" ボタンを押下して下さい。"),
    SetColor(S::kPowerOn, kLine1, kWhite),

    SetText(S::kNoCardReport, kLine1, L""),
    SetText(S::kNoCardReport, kLine2, L" 異常が発生した為、アップデート出来ません。"),
    SetText(S::kNoCardReport, kLine3, L" 画面右上の終了ボタンを押下して下さい。"),
    SetColor(S::kNoCardReport, kLine3, kRed),
    SetText(S::kNoCardReport, kLine4, L""),
    SetVisible(S::kNoCardReport, kNext, false),
    SetVisible(S::kNoCardReport, kUpdate, false),
    SetVisible(S::kNoCardReport, kSuspend, false),
    SetVisible(S::kNoCardReport, kClose, true),

    SetText(S::kCheckCard, kLine1, L"3.“Next” ボタンを押下して下さい。"),
    SetText(S::kCheckCard, kLine2, L" DVR用SDカード挿入口にSDカードが入っている場合、"),
    SetText(S::kCheckCard, kLine3, L" Nextボタンは表示されません。"),
    SetColor(S::kCheckCard, kLine2, kWhite),
    SetText(S::kCheckCard, kLine4, L""),
    SetText(S::kCheckCard, kNext, L"Next"),

    SetText(S::kInsertCard, kLine1, L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。"),
    SetText(S::kInsertCard, kLine2, L"5. DVR用SDカード挿入口にSDカードを入れて下さい。"),
    SetColor(S::kInsertCard, kLine2, kWhite),
    SetText(S::kInsertCard, kLine3, L""),
    SetText(S::kInsertCard, kLine4, L"      \"Update\" ボタンを押下して下さい。"),

    SetText(S::kUpdating, kLine1, L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。"),
    SetColor(S::kUpdating, kLine2, kWhite),
    SetText(S::kUpdating, kLine3, L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。"),
    SetText(S::kUpdating, kLine4, L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。"),
    SetText(S::kUpdating, kNotice, L""),

    SetText(S::kImageMissing, kNotice, L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。"),

    SetText(S::kWait, kLine1, L""),
    SetText(S::kWait, kLine2, L"6. しばらくお待ち下さい。"),
    SetText(S::kWait, kLine3, L""),
    SetText(S::kWait, kLine4, L""),

    SetText(S::kRemoveCard, kLine1, L""),
    SetText(S::kRemoveCard, kLine2, L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。"),
    SetColor(S::kRemoveCard, kLine2, kRed),
    SetText(S::kRemoveCard, kLine3, L""),
    SetText(S::kRemoveCard, kLine4, L"      \"Next\" ボタンを押下して下さい。"),

    SetText(S::kResult, kLine1, L""),
    SetColor(S::kResult, kLine2, kWhite),
    SetText(S::kResult, kLine3, kPressClose),
    SetText(S::kResult, kLine4, L""),
    SetVisible(S::kResult, kClose, true),
    SetText(S::kSuccess, kLine2, L"ファームウェアのアップデート終了です。"),
    SetText(S::kFailure, kLine2, L"ファームウェアのアップデートに失敗しました。"),

    SetText(S::kReopen, kLine1, L""),
    SetText(S::kReopen, kLine2, L"Please make sure DVR Firmware is correct."),
    SetColor(S::kReopen, kLine2, kWhite),
    SetText(S::kReopen, kLine3, kPressClose),
    SetText(S::kReopen, kLine4, L"To continue to upgrade, please re-open the program."),

    SetText(S::kOffline, kLine1, L"本体に外部電源を接続して下さい。"),
    SetColor(S::kOffline, kLine1, kRed),
    SetText(S::kOffline, kLine2, L""),
    SetText(S::kOffline, kLine3, L""),
    SetText(S::kOffline, kLine4, L""),
    SetText(S::kOffline, kNotice, L""),

    SetText(S::kNoticeAfterUpdate, kUpper, L"DVR用SDカード挿入口から"),
    SetText(S::kNoticeAfterUpdate, kLower, kTakeOut),
};

const ControlRow kControls[] = {
    {50, 0, 750, 50, 0, L"<< DVR Firmware Update Tool >>", kWhite, true},
    {0, 45, 800, 95, 0, L"ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", kRed, true},
    {0, 85, 400, 135, 0, L"Update Tool : V0.7.00", kWhite, true},
    {400, 85, 800, 135, 0, L"DVR : 読み込み中", kWhite, true},
    {50, 150, 750, 200, 0, L"", kWhite, true},
    {50, 210, 750, 260, 0, L"", kWhite, true},
    {50, 270, 750, 320, 0, L"", kWhite, true},
    {50, 330, 750, 380, 0, L"", kWhite, true},
    {50, 120, 750, 170, 0, L"", kBlue, true},
    {215, 405, 215 + 168, 405 + 66, kSuspendId, L"進入休眠", kWhite, false},
    {415, 405, 415 + 168, 405 + 66, kNextId, L"Next", kWhite, true},
    {615, 405, 615 + 168, 405 + 66, kUpdateId, L"Update", kWhite, false},
    {720, 8, 720 + 75, 8 + 36, kCloseId, L"", kWhite, false},
    {615, 405, 615 + 168, 405 + 66, kOkId, L"OK", kWhite, true},
    {0, 0, 800, 380, 0, L"DVR用SDカード挿入口にSDカードが入っている場合、", kWhite, true},
    {0, 100, 800, 480, 0, kTakeOut, kWhite, true},
};
static_assert(std::size(kControls) == kAllControls);
// clang-format on

}  // namespace

std::span<const Rule> Rules() {
    return kRules;
}

std::span<const Setting> Settings() {
    return kSettings;
}

std::span<const ControlRow> Controls() {
    return kControls;
}

}  // namespace tests::model
