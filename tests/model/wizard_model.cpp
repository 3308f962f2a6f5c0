#include "tests/model/wizard_model.h"

#include <algorithm>

#include "tests/model/text.h"

namespace tests::model {

std::set<const WizardModel::Rule*> WizardModel::rules_taken_;
std::set<std::pair<int, int>> WizardModel::moves_;

WizardModel::WizardModel(const World& around, Time start)
    : world(around), now_(start), reading_since_(start), ac_line_(around.ac_line) {
    for (const ControlRow& row : Controls())
        controls_.push_back({row.visible, false, row.text, row.color});
    main_.exists = main_.invalid = true;
    if (world.has_link)
        for (const int query : {0x8010, 0x8011, 0x802E, 0x8026})
            Send(query);
    Arm(kCardOutTimer, 100);
    // A wizard that starts without supply says so at once.
    if (ac_line_ == 0)
        GoOffline();
    RunThread();
}

void WizardModel::Failure(const char* function, const char* what, unsigned error) {
    Line(Text("\t%s, %s, ErrorCode(%u), #", function, what, error));
}

std::string ViewText(int step, int percent, int image_version, int running_state,
                     const std::string& dvr_version, const std::map<std::uint64_t, Time>& timers,
                     bool notice_up) {
    std::string text = Text(
        "step %d, percent %d, image version %d, running state %d, DVR version '%s'%s, timers", step,
        percent, image_version, running_state, dvr_version.c_str(), notice_up ? ", notice up" : "");
    for (const auto& [id, due] : timers)
        text += " " + std::to_string(id) + " at " + std::to_string(due.count());
    return text;
}

std::string WizardModel::Look() const {
    std::map<std::uint64_t, Time> timers;
    for (const TimerState& timer : timers_)
        timers[timer.id] = timer.due;
    return ViewText(step_, percent_, image_version_, running_state_, version_.data(), timers,
                    notice_.exists);
}

std::vector<Shown> WizardModel::screen() const {
    std::vector<Shown> shown;
    for (const auto& [control, drawn] : (notice_.exists ? notice_ : main_).drawn) {
        const ControlRow& row = Controls()[control];
        if (!drawn.first.empty())
            shown.push_back({drawn.first, drawn.second, row.left, row.top, row.right, row.bottom});
    }
    return shown;
}

Time WizardModel::NextDeadline() const {
    if (busy())
        return stack_.back().wake;
    Time next = Time::max();
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

void WizardModel::Post(unsigned message, std::uint64_t wparam, std::uint64_t lparam) {
    posted_.push_back({&main_, message, wparam, lparam});
}

void WizardModel::PostToNotice(unsigned message, std::uint64_t wparam) {
    if (notice_.exists)
        posted_.push_back({&notice_, message, wparam, 0});
}

void WizardModel::PostToAll(std::uint64_t wparam, std::uint64_t lparam) {
    PostToNotice(kPowerMessage, wparam);
    Post(kPowerMessage, wparam, lparam);
}

void WizardModel::SupplyUnreadable() {
    Failure("CPowerDetector::ThreadProc_PowerDetector", "GetSystemPowerStatusEx2() fail!!!", 31);
}

std::string WizardModel::NeverTaken() {
    std::string missing;
    for (const Rule& rule : Rules())
        if (!rules_taken_.contains(&rule))
            missing += Text("row %d of the rules\n", static_cast<int>(&rule - Rules().data()));
    constexpr std::pair<int, int> kMoves[] = {{-1, 0}, {0, 1},  {1, 2},  {2, 3},  {3, 4},  {4, 5},
                                              {2, 5},  {5, 6},  {2, 1},  {-1, 2}, {0, 2},  {4, 2},
                                              {5, 2},  {6, 2},  {0, -1}, {1, -1}, {2, -1}, {3, -1},
                                              {4, -1}, {5, -1}, {6, -1}};
    for (const auto& move : kMoves)
        if (!moves_.contains(move))
            missing += Text("the move from step %d to %d\n", move.first, move.second);
    return missing;
}

}  // namespace tests::model
