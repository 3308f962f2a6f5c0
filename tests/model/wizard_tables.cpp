#include "tests/model/wizard_tables.h"

namespace tests::model {
namespace {

constexpr wchar_t kPressClose[] = L"画面右上の終了ボタンを押下して下さい。";
constexpr wchar_t kTakeOut[] = L"SDカードを抜いて下さい。";

// clang-format off
const ScreenRow kScreens[] = {
    {Screen::kPowerOn,
     {L"1. 本体に外部電源を接続して下さい。", L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。", L"", L"\"Power On\" ボタンを押下して下さい。"},
     {{kDvrLine, L"DVR : 読み込み中"}, {kNext, L"Power On"}, {kLine1, nullptr, kWhite}, {kLine2, nullptr, kRed}}},
    {Screen::kNoCardReport,
     {L"", L" 異常が発生した為、アップデート出来ません。", L" 画面右上の終了ボタンを押下して下さい。", L""},
     {{kLine3, nullptr, kRed}, {kNext, nullptr, {}, false}, {kUpdate, nullptr, {}, false}, {kSuspend, nullptr, {}, false}, {kClose, nullptr, {}, true}}},
    {Screen::kCheckCard,
     {L"3.“Next” ボタンを押下して下さい。", L" DVR用SDカード挿入口にSDカードが入っている場合、", L" Nextボタンは表示されません。", L""},
     {{kLine2, nullptr, kWhite}, {kNext, L"Next"}}},
    {Screen::kInsertCard,
     {L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", L"", L"      \"Update\" ボタンを押下して下さい。"},
     {{kLine2, nullptr, kWhite}}},
    {Screen::kUpdating,
     {L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。", nullptr, L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。", L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。"},
     {{kLine2, nullptr, kWhite}, {kNotice, L""}}},
    {Screen::kImageMissing, {}, {{kNotice, L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。"}}},
    {Screen::kWait, {L"", L"6. しばらくお待ち下さい。", L"", L""}, {}},
    {Screen::kRemoveCard,
     {L"", L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", L"", L"      \"Next\" ボタンを押下して下さい。"},
     {{kLine2, nullptr, kRed}}},
    {Screen::kResult, {L"", nullptr, kPressClose, L""}, {{kLine2, nullptr, kWhite}, {kClose, nullptr, {}, true}}},
    {Screen::kSuccess, {nullptr, L"ファームウェアのアップデート終了です。"}, {}},
    {Screen::kFailure, {nullptr, L"ファームウェアのアップデートに失敗しました。"}, {}},
    {Screen::kReopen,
     {L"", L"Please make sure DVR Firmware is correct.", kPressClose, L"To continue to upgrade, please re-open the program."},
     {{kLine2, nullptr, kWhite}}},
    {Screen::kOffline, {L"本体に外部電源を接続して下さい。", L"", L"", L""}, {{kLine1, nullptr, kRed}, {kNotice, L""}}},
    {Screen::kNoticeAfterUpdate, {}, {{kUpper, L"DVR用SDカード挿入口から"}, {kLower, kTakeOut}}},
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

std::span<const ScreenRow> Screens() {
    return kScreens;
}

std::span<const ControlRow> Controls() {
    return kControls;
}

}  // namespace tests::model
