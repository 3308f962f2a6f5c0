#include "unit/tolvane/auto_user.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/text.h"
#include "unit/board/virtual_unit.h"

namespace unit {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

namespace {

constexpr auto kGlance = 50ms;
constexpr auto kReaction = 700ms;
constexpr auto kPress = 150ms;
// Fetching the card takes a person longer than the DVR takes to restart. A card that is in when it
// looks for one would start the update before "Update" is tapped.
constexpr auto kFetchCard = 6s;

// Screens that end the walk wherever they come.
struct DeadEnd {
    const wchar_t* text;
    const char* verdict;
};
constexpr DeadEnd kDeadEnds[] = {
    {L" 異常が発生した為、アップデート出来ません。",
     "the error screen: no storage-card report came after Power On"},
    {L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。",
     "the notice that the card holds no update image"},
    {L"ファームウェアのアップデートに失敗しました。", "the failure screen of the update"},
    {L"本体に外部電源を接続して下さい。", "the screen that asks for external power"},
};

}  // namespace

const AutoUser::Station AutoUser::kStations[] = {
    {"power-on", L"\"Power On\" ボタンを押下して下さい。", 0, L"Power On", 10s, Act::kTap},
    {"notice-check-card", L"DVR用SDカード挿入口にSDカードが入っている場合、", 0, L"OK", 5s,
     Act::kTap},
    {"check-card", L" Nextボタンは表示されません。", 0, L"Next", 15s, Act::kTap},
    {"insert-card", L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", 0, nullptr, 10s,
     Act::kInsertCard},
    {"update-ready", L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", 0, L"Update", 20s,
     Act::kTap},
    {"updating-start", L"Update Percent : ", 1, nullptr, 10s, Act::kLookOnly},
    {"updating-half", L"Update Percent : ", 50, nullptr, 600s, Act::kLookOnly},
    {"please-wait", L"6. しばらくお待ち下さい。", 0, nullptr, 600s, Act::kLookOnly},
    {"notice-remove-card", L"DVR用SDカード挿入口から", 0, L"OK", 10s, Act::kTap},
    {"remove-card", L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", 0, L"Next", 10s,
     Act::kRemoveCardAndTap},
    {"result-success", L"ファームウェアのアップデート終了です。", 0, nullptr, 30s, Act::kFinish},
};

AutoUser::AutoUser(VirtualUnit& unit, Options options)
    : unit_(unit), options_(std::move(options)) {}

void AutoUser::Start() {
    since_ = kernel::Now();
    LookAgain();
}

void AutoUser::LookAgain() {
    kernel::After(kGlance, [this] {
        if (!finished_)
            Look();
    });
}

void AutoUser::Look() {
    const Station& station = kStations[station_];
    const ScreenReader screen(unit_.Screen());
    if (AtStation(station, screen)) {
        Arrive(station, screen);
        return;
    }
    if (const std::optional<std::string> refusal = Refusal(screen)) {
        End(false, *refusal);
        return;
    }
    if (!unit_.program().running()) {
        End(false,
            "the program ended while the walk waited for the screen " + std::string(station.name));
        return;
    }
    if (kernel::Now() - since_ > station.limit) {
        End(false, "the screen " + std::string(station.name) + " did not come within " +
                       std::to_string(station.limit.count()) + " s");
        return;
    }
    LookAgain();
}

bool AutoUser::AtStation(const Station& station, const ScreenReader& screen) const {
    if (station.act == Act::kFinish && !screen.CloseButton())
        return false;
    if (station.percent != 0) {
        const std::wstring text = screen.TextStartingWith(station.text);
        const std::size_t digits = std::wcslen(station.text);
        return text.size() > digits && std::wcstol(&text[digits], nullptr, 10) >= station.percent;
    }
    return screen.Shows(station.text) && (!station.button || screen.Shows(station.button));
}

std::optional<std::string> AutoUser::Refusal(const ScreenReader& screen) const {
    // "Connect external power" is a plain instruction of the first screen when numbered.
    for (const DeadEnd& end : kDeadEnds)
        if (screen.Shows(end.text))
            return end.verdict;
    return std::nullopt;
}

void AutoUser::Arrive(const Station& station, const ScreenReader& screen) {
    SavePicture(station.name);
    const kernel::Duration delay = station.act == Act::kInsertCard ? kFetchCard : kReaction;
    kernel::After(delay,
                  [this, &station,
                   place = station.button ? screen.PlaceOf(station.button) : screen.CloseButton()] {
                      switch (station.act) {
                          case Act::kLookOnly:
                              Next();
                              return;
                          case Act::kInsertCard:
                              unit_.InsertCard(options_.card);
                              Next();
                              return;
                          case Act::kRemoveCardAndTap:
                              unit_.RemoveCard();
                              [[fallthrough]];
                          case Act::kTap:
                          case Act::kFinish:
                              Tap(station, *place);
                              return;
                      }
                  });
}

void AutoUser::Tap(const Station& station, POINT place) {
    unit_.Touch(platform::window::Touch::kDown, place.x, place.y);
    kernel::After(kPress, [this, &station, place] {
        SavePicture(std::string(station.name) + "-pressed");
        unit_.Touch(platform::window::Touch::kUp, place.x, place.y);
        if (station.act == Act::kFinish)
            End(true, "the success screen was reached");
        else
            Next();
    });
}

void AutoUser::Next() {
    ++station_;
    since_ = kernel::Now();
    LookAgain();
}

void AutoUser::SavePicture(const std::string& name) {
    if (options_.screens.empty())
        return;
    char number[8];
    std::snprintf(number, sizeof number, "%02zu-", saved_.size() + 1);
    saved_.push_back(options_.screens + "/" + number + name + ".png");
    std::string problem;
    if (!WritePng(unit_.TakePicture(), saved_.back(), problem))
        unit_.Say(problem);
}

void AutoUser::End(bool success, std::string verdict) {
    finished_ = true;
    succeeded_ = success;
    verdict_ = std::move(verdict);
    if (!success) {
        verdict_ += " (at station " + std::string(kStations[station_].name) + ")";
        SavePicture("stopped");
    }
}

}  // namespace unit
