#include "tests/unit_harness/car_driver.h"

#include <utility>

#include "platform/kernel/clock.h"

namespace tests {

using namespace std::chrono_literals;
using platform::kernel::Now;

namespace {

constexpr auto kPollInterval = 400ms;
// The wizard is busy for a while after some taps and still shows the button.
constexpr auto kTapAgain = 1s;
// Some screens are shown only briefly: a driver reads before he believes one.
constexpr auto kReading = 1s;
// The version arrives after the screen that shows the update's end.
constexpr auto kVersionTime = 6s;
// When nothing on the screen helps, he tries where buttons were before.
constexpr auto kHelpless = 8s;
constexpr POINT kButtons[] = {{699, 438}, {499, 438}};
// How long a card stays out before the next is inserted, and how long the DVR restarts before that.
constexpr auto kCardChange = 2s;
constexpr auto kRestart = 4s;

constexpr wchar_t kSuccess[] = L"ファームウェアのアップデート終了です。";
constexpr wchar_t kFailure[] = L"ファームウェアのアップデートに失敗しました。";
constexpr wchar_t kError[] = L" 異常が発生した為、アップデート出来ません。";
constexpr wchar_t kImageMissing[] = L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。";
constexpr wchar_t kCheckCard[] = L" Nextボタンは表示されません。";
constexpr wchar_t kInsertCard[] = L"5. DVR用SDカード挿入口にSDカードを入れて下さい。";
constexpr wchar_t kRemoveCard[] = L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。";

}  // namespace

const char* NameOf(CarDriver::End end) {
    constexpr const char* kNames[] = {"success", "failure", "error", "standstill"};
    return kNames[static_cast<std::size_t>(end)];
}

void CarDriver::MoveCard(const char* command) {
    run_.RunScenario(command);
    card_moved_ = news_ = Now();
}

std::optional<CarDriver::Time> CarDriver::ShownFor(const std::wstring& text) {
    if (!run_.screen().Shows(text))
        return std::nullopt;
    return Now() - texts_since_;
}

bool CarDriver::Tap(const char* caption) {
    if (Now() - tapped_ < kTapAgain || !run_.Tap(caption))
        return false;
    tapped_ = news_ = Now();
    return true;
}

void CarDriver::Act() {
    if (Tap("OK"))
        return;
    const bool card_in = run_.unit().dvr().dvr()->CardIn();
    const bool card_unwanted =
        ShownFor(kCheckCard) || ShownFor(kRemoveCard) || (ShownFor(kImageMissing) && blank_is_in_);
    if (card_unwanted && card_in)
        return MoveCard("card out");
    if (ShownFor(kInsertCard) > kRestart && !card_in && Now() - card_moved_ > kCardChange) {
        blank_is_in_ = std::exchange(forget_image_, false);
        return MoveCard(blank_is_in_ ? "card without image" : "card in");
    }
    for (const char* const caption : {"Power On", "Next", "Update"})
        if (Tap(caption))
            return;
    if (Now() - news_ < kHelpless)
        tried_places_ = false;
    else if (!std::exchange(tried_places_, true))
        for (const POINT place : kButtons)
            run_.TapAt(place);
}

void CarDriver::Look() {
    run_.RunFor(kPollInterval);
    if (const std::uint64_t version = run_.unit().screen_version();
        std::exchange(seen_version_, version) != version)
        if (auto texts = run_.screen().Texts(); texts != texts_) {
            texts_ = std::move(texts);
            texts_since_ = news_ = Now();
        }
    Act();
    looked_();
}

std::optional<CarDriver::End> CarDriver::FindEnd() {
    if (ShownFor(kSuccess) > kReading)
        return End::kSuccess;
    if (ShownFor(kFailure) > kVersionTime)
        return End::kFailure;
    if (ShownFor(kError) > kVersionTime)
        return End::kError;
    if (Now() - news_ > kPatience)
        return End::kStandstill;
    return std::nullopt;
}

std::optional<CarDriver::End> CarDriver::Drive(std::chrono::seconds limit,
                                               const std::function<bool()>& stop) {
    news_ = Now();
    const auto deadline = Now() + limit;
    while (Now() < deadline && run_.unit().program().running() && !stop()) {
        Look();
        if (const auto end = FindEnd())
            return end;
    }
    return std::nullopt;
}

void CarDriver::CyclePower() {
    if (run_.unit().dvr().dvr()->CardIn())
        MoveCard("card out");
    run_.RunScenario("power off\nwait 2s\ndvr reset\npower on\nwait 4s");
}

}  // namespace tests
