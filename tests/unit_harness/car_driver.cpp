#include "tests/unit_harness/car_driver.h"

#include "platform/kernel/clock.h"

namespace tests {

using namespace std::chrono_literals;
using platform::kernel::Now;

namespace {

constexpr auto kPollInterval = 400ms;
// The wizard is busy for a while after some taps, and shows the button still.
constexpr auto kTapAgain = 1s;
// A driver reads the screen before he believes it: some stand for a moment only.
constexpr auto kReading = 1s;
// The version comes after the screen that shows the update's end.
constexpr auto kVersionComes = 6s;
// When nothing on the screen helps, he tries where buttons were before.
constexpr auto kHelpless = 8s;
constexpr POINT kButtons[] = {{699, 438}, {499, 438}};
// How long a card stays out before another one goes in, and how long the DVR restarts before that.
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

bool CarDriver::CardIn() {
    return run_.unit().dvr().dvr()->CardIn();
}

void CarDriver::MoveCard(bool in) {
    if (in) {
        blank_is_in_ = forget_image_;
        run_.unit().InsertCard(std::exchange(forget_image_, false) ? blank_.path() : image_.path());
    } else {
        run_.unit().RemoveCard();
    }
    card_moved_ = news_ = Now();
}

std::optional<std::chrono::microseconds> CarDriver::Stands(const std::wstring& text) {
    if (!run_.screen().Shows(text))
        return std::nullopt;
    return Now() - texts_since_;
}

void CarDriver::Act() {
    const auto tap = [this](const wchar_t* caption) {
        if (Now() - tapped_ < kTapAgain || !run_.Tap(caption))
            return false;
        tapped_ = news_ = Now();
        return true;
    };
    if (tap(L"OK"))
        return;
    const bool card_unwanted =
        Stands(kCheckCard) || Stands(kRemoveCard) || (Stands(kImageMissing) && blank_is_in_);
    if (card_unwanted && CardIn()) {
        MoveCard(false);
        return;
    }
    if (Stands(kInsertCard) > kRestart && !CardIn() && Now() - card_moved_ > kCardChange) {
        MoveCard(true);
        return;
    }
    for (const wchar_t* caption : {L"Power On", L"Next", L"Update"})
        if (tap(caption))
            return;
    if (Now() - news_ < kHelpless) {
        groped_ = false;
    } else if (!std::exchange(groped_, true)) {
        for (const POINT place : kButtons)
            run_.TapAt(place.x, place.y);
    }
}

void CarDriver::Look() {
    run_.RunFor(kPollInterval);
    if (const std::uint64_t version = run_.unit().screen_version(); version != seen_version_) {
        seen_version_ = version;
        std::vector<std::wstring> texts = run_.screen().Texts();
        if (texts != texts_) {
            texts_ = std::move(texts);
            texts_since_ = news_ = Now();
        }
    }
    Act();
    looked_();
}

std::optional<CarDriver::End> CarDriver::Arrived() {
    if (Stands(kSuccess) > kReading)
        return End::kSuccess;
    if (Stands(kFailure) > kVersionComes)
        return End::kFailure;
    if (Stands(kError) > kVersionComes)
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
        if (const auto end = Arrived())
            return end;
    }
    return std::nullopt;
}

void CarDriver::CyclePower() {
    if (CardIn())
        MoveCard(false);
    run_.unit().SetExternalPower(false);
    run_.RunFor(kCardChange);
    run_.unit().ResetDvr();
    run_.unit().SetExternalPower(true);
    run_.RunFor(kRestart);
}

}  // namespace tests
