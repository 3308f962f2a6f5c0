#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

namespace tests::model {
namespace {

constexpr Time kNever = Time::max();

}  // namespace

std::vector<std::uint64_t>& WizardModel::RulesTaken() {
    static std::vector<std::uint64_t> taken(Rules().size());
    return taken;
}

std::array<std::array<std::uint64_t, 8>, 8>& WizardModel::Moves() {
    static std::array<std::array<std::uint64_t, 8>, 8> moves{};
    return moves;
}

WizardModel::WizardModel(const World& around, Time start)
    : world(around), now_(start), reading_since_(start), ac_line_(around.ac_line) {
    for (const ControlRow& row : Controls())
        controls_.push_back({row.visible, false, row.text, row.color});
    main_.exists = true;
    main_.invalid = true;
    if (world.has_link)
        for (const unsigned query : {0x8010U, 0x8011U, 0x802EU, 0x8026U})
            Send(query);
    Arm(kCardOutTimer, 100);
    // A wizard that starts without supply says so at once.
    if (ac_line_ == 0) {
        was_offline_ = true;
        for (const Control control : {kNext, kUpdate, kSuspend})
            controls_[control].visible = false;
        Apply(Screen::kOffline);
    }
    RunThread();
}

void WizardModel::ClearOutput() {
    log.clear();
    frames.clear();
    reset_requests.clear();
    scaler_requests.clear();
    reset_opens = scaler_opens = 0;
    hal_codes.clear();
    power_states.clear();
}

void WizardModel::Line(const std::string& line) {
    log += "[Tolvane.exe] " + line + "\r\n";
}

void WizardModel::Failure(const char* function, const char* what, unsigned error) {
    Line(Text("\t%s, %s, ErrorCode(%u), #", function, what, error));
}

std::string WizardModel::version() const {
    return version_.data();
}

std::map<std::uint64_t, Time> WizardModel::timers() const {
    std::map<std::uint64_t, Time> running;
    for (const TimerState& timer : timers_)
        running[timer.id] = timer.due;
    return running;
}

std::vector<Shown> WizardModel::screen() const {
    std::vector<Shown> shown;
    for (const auto& [control, drawn] : (notice_.exists ? notice_ : main_).drawn) {
        const ControlRow& row = Controls()[control];
        if (!drawn.text.empty())
            shown.push_back({drawn.text, drawn.color, row.left, row.top, row.right, row.bottom});
    }
    return shown;
}

Time WizardModel::NextDeadline() const {
    if (busy())
        return stack_.back().wake;
    Time next = kNever;
    for (const TimerState& timer : timers_)
        next = std::min(next, timer.due);
    return next;
}

void WizardModel::RunTo(Time time) {
    while (!closed_ && NextDeadline() <= time) {
        now_ = std::max(now_, NextDeadline());
        RunThread();
    }
    now_ = time;
}

void WizardModel::Settle() {
    RunThread();
}

void WizardModel::Receive(std::span<const std::uint8_t> bytes) {
    if (!world.has_link || closed_)
        return;
    receiving_ = true;
    for (const std::uint8_t byte : bytes)
        if (const auto report = finder_.Add(byte))
            OnReport(*report);
    receiving_ = false;
    reading_since_ = now_;
}

void WizardModel::Touch(bool down, int x, int y) {
    touches_.push_back({down, x, y});
}

void WizardModel::Post(Message message, std::uint64_t wparam, std::uint64_t lparam) {
    posted_.push_back({&main_, message, wparam, lparam});
}

void WizardModel::PostToNotice(Message message, std::uint64_t wparam) {
    if (notice_.exists)
        posted_.push_back({&notice_, message, wparam, 0});
}

void WizardModel::PostToAll(std::uint64_t wparam, std::uint64_t lparam) {
    PostToNotice(Message::kOther, 0);
    Post(Message::kPower, wparam, lparam);
}

void WizardModel::SupplyUnreadable() {
    Failure("CPowerDetector::ThreadProc_PowerDetector", "GetSystemPowerStatusEx2() fail!!!", 31);
}

void WizardModel::Invalidate() {
    main_.invalid = true;
}

}  // namespace tests::model
