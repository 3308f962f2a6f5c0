#include "unit/workbench/operator_hint.h"

#include <algorithm>
#include <string_view>

#include "unit/board/virtual_unit.h"
#include "unit/picture/screen_reader.h"

namespace unit {
namespace {

using State = dvrsim::Dvr::State;

constexpr std::wstring_view kSuccess = L"ファームウェアのアップデート終了です。";
constexpr std::wstring_view kFailure = L"ファームウェアのアップデートに失敗しました。";

// Texts that distinguish the screens; the start of a text is enough.
constexpr std::wstring_view kOffline = L"本体に外部電源を接続して下さい。";
constexpr std::wstring_view kFirstNotice = L"DVR用SDカード挿入口にSDカードが入っている場合、";
constexpr std::wstring_view kSecondNotice = L"DVR用SDカード挿入口から";
constexpr std::wstring_view kPowerOn = L"\"Power On\" ボタンを";
constexpr std::wstring_view kNoCardReport = L" 異常が発生した為";
constexpr std::wstring_view kCheckCard = L" Nextボタンは表示されません。";
constexpr std::wstring_view kNoImage = L"DVR用SDカードに “gp_cardvr_upgrade.bin” が";
constexpr std::wstring_view kInsertCard = L"5. DVR用SDカード挿入口に";
constexpr std::wstring_view kUpdating = L"Update Percent : ";
constexpr std::wstring_view kWait = L"6. しばらくお待ち下さい。";
constexpr std::wstring_view kRemoveCard = L"7. DVR用SDカード挿入口から";
constexpr std::wstring_view kReopen = L"Please make sure DVR Firmware";

bool Shows(const HintState& state, std::wstring_view start) {
    return std::ranges::any_of(
        state.texts, [start](const std::wstring& text) { return text.starts_with(start); });
}

// With a real DVR nothing is known of its state or its card.
bool Known(const HintState& state) {
    return state.dvr.has_value();
}
bool CardIn(const HintState& state) {
    return Known(state) && state.card_in;
}
bool Off(const HintState& state) {
    return state.dvr == State::kOff;
}
bool Booting(const HintState& state) {
    return state.dvr == State::kBooting;
}
bool Updates(const HintState& state) {
    return state.dvr == State::kUpdating;
}
bool Failed(const HintState& state) {
    return state.dvr == State::kUpdateFailed;
}
bool Restarted(const HintState& state) {
    return Booting(state) || state.dvr == State::kNormal;
}
bool Hangs(const HintState& state) {
    return state.hangs;
}
bool NextShows(const HintState& state) {
    return std::ranges::find(state.texts, L"Next") != state.texts.end();
}
bool UpdateShows(const HintState& state) {
    return std::ranges::find(state.texts, L"Update") != state.texts.end();
}
bool BootsWithCard(const HintState& state) {
    return Booting(state) && state.card_in;
}
bool Always(const HintState&) {
    return true;
}

struct Row {
    std::wstring_view text;  // on the screen
    bool (*condition)(const HintState&);
    const char* hint;
};

// The first row that applies. One row a line, whatever its length.
// clang-format off
constexpr Row kRows[] = {
    {kOffline, Always, "External power is off: click \"On\" in the group Power. The wizard then begins again."},
    {kFirstNotice, CardIn, "Remove the SD card first (group SD card), then click \"OK\" on the unit's screen."},
    {kFirstNotice, Always, "Click \"OK\" on the unit's screen. The DVR restarts then, which takes about 3 seconds."},
    {kSecondNotice, Always, "The DVR has written the firmware. Click \"OK\" on the unit's screen."},
    {kSuccess, Always, "Success: the DVR reports its version after the update. Click the red close button at the top right of the unit's screen."},
    {kFailure, Always, "Failure: the DVR did not report a version after the update. Click the red close button at the top right of the unit's screen."},
    {kPowerOn, CardIn, "Remove the SD card (group SD card), then click \"Power On\" on the unit's screen."},
    {kPowerOn, Always, "Click \"Power On\" on the unit's screen. The mouse is the finger."},
    {kNoCardReport, Always, "The DVR did not report its card in time. Click the red close button at the top right of the unit's screen."},
    {kCheckCard, Off, "The DVR is off and reports nothing: switch it on in the group DVR."},
    {kCheckCard, Booting, "The DVR starts. Wait until it reports its card."},
    {kCheckCard, CardIn, "Remove the SD card (group SD card). \"Next\" appears when the DVR has reported that."},
    {kCheckCard, NextShows, "Click \"Next\" on the unit's screen. The DVR restarts then."},
    {kCheckCard, Always, "Wait for \"Next\". It appears when the DVR reports that no card is in."},
    {kInsertCard, Off, "The DVR is off: switch it on in the group DVR."},
    {kInsertCard, Updates, "The DVR found the image when it started, and updates itself."},
    {kInsertCard, Failed, "The DVR's update has failed. Remove the SD card and reset the DVR (group DVR)."},
    {kInsertCard, BootsWithCard, "The DVR starts with the card in: it begins the update if the card has an image. Wait."},
    {kInsertCard, Booting, "The DVR restarts: wait until its state is \"normal\". A card that it finds while it starts begins the update at once, without \"Update\"."},
    {kNoImage, Always, "The DVR reported no progress: the card may have no image. Insert a card with an image, then click \"Update\"."},
    {kInsertCard, UpdateShows, "Click \"Update\" on the unit's screen. The DVR restarts and updates itself."},
    {kInsertCard, CardIn, "Wait for \"Update\". It appears when the DVR has reported the card."},
    {kInsertCard, Always, "Insert the SD card (group SD card: \"Insert\"). \"Update\" appears on the unit's screen then."},
    {kUpdating, Hangs, "A fault makes the update hang. Clear it in the group Faults, and the update continues."},
    {kUpdating, Updates, "The DVR updates itself. Wait, or try a fault (group Faults)."},
    {kUpdating, Failed, "The DVR's update has failed and the wizard waits for ever. Switch external power off and on (group Power): it begins again."},
    {kUpdating, Off, "The DVR is off and the wizard waits for ever. Switch the DVR on, then external power off and on (group Power)."},
    {kUpdating, Restarted, "The DVR has restarted and the wizard waits for ever. Switch external power off and on (group Power): it begins again."},
    {kUpdating, Always, "The DVR updates itself. Wait."},
    {kWait, Always, "The DVR has written the firmware. A notice appears in about 3 seconds."},
    {kRemoveCard, Restarted, "The DVR restarts. Wait for the result."},
    {kRemoveCard, Off, "The DVR is off: switch it on in the group DVR. The result appears when it runs."},
    {kRemoveCard, CardIn, "Remove the SD card (group SD card), then click \"Next\" on the unit's screen."},
    {kRemoveCard, NextShows, "Click \"Next\" on the unit's screen. The DVR restarts with the new firmware."},
    {kRemoveCard, Always, "Wait for the result. It appears when the DVR runs again."},
    {kReopen, Always, "Click the red close button at the top right of the unit's screen, then restart."},
};
// clang-format on

}  // namespace

std::optional<Result> ShownResult(const std::vector<std::wstring>& texts) {
    if (std::ranges::find(texts, kSuccess) != texts.end())
        return Result::kSuccess;
    if (std::ranges::find(texts, kFailure) != texts.end())
        return Result::kFailure;
    return std::nullopt;
}

HintState ReadHintState(VirtualUnit& unit) {
    HintState state;
    state.texts = ScreenReader(unit.Screen()).Texts();
    state.suspended = unit.suspended();
    if (const dvrsim::Dvr* const dvr = unit.dvr().dvr()) {
        state.dvr = dvr->GetState();
        state.card_in = dvr->CardIn();
        const auto& stop = dvr->GetFaults().stop_at_percent;
        state.hangs = stop && dvr->Percent() >= *stop && state.dvr == State::kUpdating;
    }
    return state;
}

std::string HintFor(const HintState& state) {
    if (state.suspended)
        return "The unit is suspended: click \"Wake\" in the group Power.";
    for (const Row& row : kRows)
        if (Shows(state, row.text) && row.condition(state))
            return row.hint;
    return "Wait: the program is starting.";
}

}  // namespace unit
