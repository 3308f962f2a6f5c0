#include "unit/workbench/gloss.h"

#include <algorithm>

namespace unit {
namespace {

// One text a line, whatever its length.
// clang-format off
constexpr Gloss kGlosses[] = {
    {L"ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", "Do not unplug external power while the firmware is being updated."},
    {L"DVR : 読み込み中", "DVR: reading"},
    {L"進入休眠", "Suspend (in Chinese)"},
    {L"1. 本体に外部電源を接続して下さい。", "1. Connect the unit to external power."},
    {L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。", "2. Make sure that there is no SD card in the DVR's slot."},
    {L"\"Power On\" ボタンを押下して下さい。", "Press the button \"Power On\"."},
    {L" 異常が発生した為、アップデート出来ません。", "Something is wrong: the update is not possible."},
    {L" 画面右上の終了ボタンを押下して下さい。", "Press the close button at the top right of the screen."},
    {L"3.“Next” ボタンを押下して下さい。", "3. Press the button \"Next\"."},
    {L" DVR用SDカード挿入口にSDカードが入っている場合、", "While there is an SD card in the DVR's slot,"},
    {L" Nextボタンは表示されません。", "the button \"Next\" is not shown."},
    {L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", "4. Put \"gp_card_upgrade.bin\" on the SD card."},
    {L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", "5. Insert the SD card into the DVR's slot."},
    {L"      \"Update\" ボタンを押下して下さい。", "Press the button \"Update\"."},
    {L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。", "Do not switch the unit off while the firmware is being updated."},
    {L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。", "Do not press the unit's RESET button while the firmware is being updated."},
    {L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。", "Do not remove the SD card while the firmware is being updated."},
    {L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", "The DVR's SD card has no \"gp_cardvr_upgrade.bin\"."},
    {L"6. しばらくお待ち下さい。", "6. Please wait."},
    {L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", "7. Remove the SD card from the DVR's slot."},
    {L"      \"Next\" ボタンを押下して下さい。", "Press the button \"Next\"."},
    {L"画面右上の終了ボタンを押下して下さい。", "Press the close button at the top right of the screen."},
    {L"ファームウェアのアップデート終了です。", "The firmware update is complete."},
    {L"ファームウェアのアップデートに失敗しました。", "The firmware update has failed."},
    {L"本体に外部電源を接続して下さい。", "Connect the unit to external power."},
    {L"DVR用SDカード挿入口にSDカードが入っている場合、", "If there is an SD card in the DVR's slot,"},
    {L"DVR用SDカード挿入口から", "From the DVR's slot,"},
    {L"SDカードを抜いて下さい。", "remove the SD card."},
};
// clang-format on

}  // namespace

std::span<const Gloss> Glosses() {
    return kGlosses;
}

std::string_view GlossOf(std::wstring_view text) {
    const auto found = std::ranges::find(kGlosses, text, &Gloss::text);
    return found == std::end(kGlosses) ? std::string_view() : found->english;
}

}  // namespace unit
