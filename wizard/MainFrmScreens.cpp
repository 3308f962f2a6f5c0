#include "wizard/MainFrmScreens.h"

#include <algorithm>
#include <iterator>

#include "ui/DrawButton.h"
#include "ui/DrawLabel.h"
#include "wizard/MainFrm.h"

namespace {

using enum ScreenId;
using enum ControlId;

using Text = TextSetting;
using Font = WizardFont;
using Color = ColorSetting;
using Visible = VisibleSetting;

// One row a line, whatever its length.
// clang-format off
constexpr ScreenRow kScreenRows[] = {
    {kPowerOn, kDvrVersion, Text{L"DVR : 読み込み中", kCentred}},
    {kPowerOn, kLine1, Text{L"1. 本体に外部電源を接続して下さい。", kLeft}},
    {kPowerOn, kLine2, Text{L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。", kLeft}},
    {kPowerOn, kLine3, Text{L"", kLeft}},
    {kPowerOn, kLine2, Color{kRed}},
    {kPowerOn, kNext, Text{L"Power On", kCentred}},
    {kPowerOn, kLine4, Text{L"\"Power On\" ボタンを押下して下さい。", kLeft}},
    {kPowerOn, kLine1, Color{kWhite}},
    {kPowerOn, kLine1, Font{9, 26, 500}},
    {kPowerOn, kLine2, Font{9, 26, 500}},
    {kPowerOn, kLine3, Font{9, 26, 500}},
    {kPowerOn, kLine4, Font{9, 26, 500}},

    {kNoCardReport, kLine1, Text{L"", kLeft}},
    {kNoCardReport, kLine2, Text{L" 異常が発生した為、アップデート出来ません。", kLeft}},
    {kNoCardReport, kLine3, Text{L" 画面右上の終了ボタンを押下して下さい。", kLeft}},
    {kNoCardReport, kLine3, Color{kRed}},
    {kNoCardReport, kLine4, Text{L"", kLeft}},
    {kNoCardReport, kNext, Visible{FALSE}},
    {kNoCardReport, kUpdate, Visible{FALSE}},
    {kNoCardReport, kSuspend, Visible{FALSE}},
    {kNoCardReport, kClose, Visible{TRUE}},

    {kCheckCard, kLine1, Text{L"3.“Next” ボタンを押下して下さい。", kLeft}},
    {kCheckCard, kLine2, Text{L" DVR用SDカード挿入口にSDカードが入っている場合、", kLeft}},
    {kCheckCard, kLine3, Text{L" Nextボタンは表示されません。", kLeft}},
    {kCheckCard, kLine2, Color{kWhite}},
    {kCheckCard, kLine4, Text{L"", kLeft}},
    {kCheckCard, kNext, Text{L"Next", kCentred}},
    {kCheckCard, kLine1, Font{12, 40, 500}},
    {kCheckCard, kLine2, Font{9, 26, 500}},
    {kCheckCard, kLine3, Font{9, 26, 500}},
    {kCheckCard, kLine4, Font{9, 26, 500}},

    {kInsertCard, kLine1, Text{L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", kLeft}},
    {kInsertCard, kLine2, Text{L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", kLeft}},
    {kInsertCard, kLine2, Color{kWhite}},
    {kInsertCard, kLine3, Text{L"", kLeft}},
    {kInsertCard, kLine4, Text{L"      \"Update\" ボタンを押下して下さい。", kLeft}},
    {kInsertCard, kLine1, Font{9, 26, 500}},

    {kUpdating, kLine1, Text{L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。", kLeft}},
    {kUpdating, kLine2, Color{kWhite}},
    {kUpdating, kLine2, Font{9, 26, 500}},
    {kUpdating, kLine3, Text{L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。", kLeft}},
    {kUpdating, kLine4, Text{L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。", kLeft}},
    {kUpdating, kNotice, Text{L"", kLeft}},

    {kImageMissing, kNotice, Text{L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", kCentred}},

    {kWait, kLine1, Text{L"", kLeft}},
    {kWait, kLine2, Text{L"6. しばらくお待ち下さい。", kLeft}},
    {kWait, kLine3, Text{L"", kLeft}},
    {kWait, kLine4, Text{L"", kLeft}},

    {kRemoveCard, kLine1, Text{L"", kLeft}},
    {kRemoveCard, kLine2, Text{L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", kLeft}},
    {kRemoveCard, kLine2, Font{13, 40, 600}},
    {kRemoveCard, kLine2, Color{kRed}},
    {kRemoveCard, kLine3, Text{L"", kLeft}},
    {kRemoveCard, kLine4, Text{L"      \"Next\" ボタンを押下して下さい。", kLeft}},

    {kResult, kLine1, Text{L"", kLeft}},
    {kResult, kLine2, Font{15, 44, 600}},
    {kResult, kLine2, Color{kWhite}},
    {kResult, kLine3, Text{L"画面右上の終了ボタンを押下して下さい。", kLeft}},
    {kResult, kLine4, Text{L"", kLeft}},
    {kResult, kClose, Visible{TRUE}},

    {kResultSuccess, kLine2, Text{L"ファームウェアのアップデート終了です。", kLeft}},

    {kResultFailure, kLine2, Text{L"ファームウェアのアップデートに失敗しました。", kLeft}},

    {kReopen, kLine1, Text{L"", kLeft}},
    {kReopen, kLine2, Text{L"Please make sure DVR Firmware is correct.", kLeft}},
    {kReopen, kLine2, Font{15, 48, 600}},
    {kReopen, kLine2, Color{kWhite}},
    {kReopen, kLine3, Text{L"画面右上の終了ボタンを押下して下さい。", kLeft}},
    {kReopen, kLine4, Text{L"To continue to upgrade, please re-open the program.", kLeft}},

    {kPowerOffline, kLine1, Text{L"本体に外部電源を接続して下さい。", kLeft}},
    {kPowerOffline, kLine1, Font{13, 40, 600}},
    {kPowerOffline, kLine1, Color{kRed}},
    {kPowerOffline, kLine2, Text{L"", kLeft}},
    {kPowerOffline, kLine3, Text{L"", kLeft}},
    {kPowerOffline, kLine4, Text{L"", kLeft}},
    {kPowerOffline, kNotice, Text{L"", kLeft}},
};
// clang-format on

static_assert(std::ranges::is_sorted(kScreenRows, {}, &ScreenRow::screen),
              "the rows of one screen stand together, the screens in their order");

struct SettingApplier {
    CDrawCtrl& control;

    void operator()(const TextSetting& setting) const {
        control.SetText(setting.text, setting.format);
    }
    void operator()(const WizardFont& font) const {
        control.SetFont(kFontFace, font.width, font.height, font.weight, kFontCharSet);
    }
    void operator()(const ColorSetting& setting) const { control.SetTextColor(setting.color); }
    void operator()(const VisibleSetting& setting) const { control.SetVisible(setting.visible); }
};

}  // namespace

void CMainFrame::ApplyScreen(ScreenId screen) {
    const auto rows = std::ranges::equal_range(kScreenRows, screen, {}, &ScreenRow::screen);
    for (const ScreenRow& row : rows)
        std::visit(SettingApplier{GetControl(row.control)}, row.setting);
}

CDrawCtrl& CMainFrame::GetControl(ControlId control) {
    switch (control) {
        case kDvrVersion:
            return *m_pLblDvrVersion;
        case kLine1:
            return *m_pLblLine1;
        case kLine2:
            return *m_pLblLine2;
        case kLine3:
            return *m_pLblLine3;
        case kLine4:
            return *m_pLblLine4;
        case kNotice:
            return *m_pLblNotice;
        case kNext:
            return *m_pBtnNext;
        case kUpdate:
            return *m_pBtnUpdate;
        case kSuspend:
            return *m_pBtnSuspend;
        case kClose:
            break;
    }
    return *m_pBtnClose;
}
