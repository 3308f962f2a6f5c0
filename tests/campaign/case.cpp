#include <algorithm>
#include <random>
#include <sstream>

#include "tests/campaign/campaign.h"

namespace tests::campaign {
namespace {

using End = CarDriver::End;

constexpr struct {
    std::string_view name;
} kTriggerNames[kTriggers] = {{"call"}, {"frame"}, {"byte"}};

// One row a line, whatever its length.
// clang-format off
const Flow kFlows[] = {
    {"normal", End::kSuccess, "", "", false},
    {"quick", End::kSuccess},
    {"image-missing", End::kSuccess, "", "", true, true},
    {"card-in", End::kSuccess, "card without image"},
    {"no-card-report", End::kError, "fault dvr silent-card on"},
    {"no-version", End::kFailure, "fault dvr silent-version on"},
    {"silent", End::kError, "fault dvr silent on"},
    {"update-hangs", End::kStandstill, "fault dvr jump-back off\nfault dvr stop-at 40"},
    {"indication-flood", End::kSuccess, "fault dvr repeat-card 200ms"},
    {"waiting-repaints", End::kSuccess, "start with waiting repaints\nfault dvr repeat-card 200ms"},
    {"power-lost", End::kSuccess, "", "card out\npower off\nwait 2s\ndvr reset\npower on\nwait 4s"},
    {"dvr-reboots", End::kSuccess, "", "dvr reboot"},
    {"power-off-at-start", End::kSuccess, "start without external power\nwait 3s\npower on"},
    {"no-link", End::kError, "start without driver COM9:"},
    {"no-reset", End::kStandstill, "start without driver DVR1:"},
    {"no-scaler", End::kSuccess, "start without driver SCA0:"},
};

constexpr FaultKind kKinds[] = {
    {kFails, kCall, "fault any-call after SKIP times 1"},
    {"keeps-failing", kCall, "fault any-call after SKIP times 1"},
    {kFailsToTheEnd, kCall, "fault any-call after SKIP times 1"},
    {"drops", kByte, "fault line drop bytes to-unit after SKIP times 1"},
    {"corrupts", kByte, "fault line corrupt bytes to-unit after SKIP times 1"},
    {"splits", kByte, "fault line split 300ms bytes to-unit after SKIP times 1"},
    {"loses-request", kFrame, "fault line drop bytes to-dvr after SKIP times 1"},
    {"dvr-resets", kFrame, "dvr reset"},
    {"dvr-silent", kFrame, "fault dvr silent on"},
    {"dvr-off", kFrame, "dvr power off"},
    {"unplugged", kFrame, "line unplug"},
    {"card-leaves", kFrame, "card out"},
    {"power-goes", kFrame, "power off"},
    {"suspend-asked", kFrame, "request suspend"},
    {"resume-asked", kFrame, "request resume"},
    {"off-asked", kFrame, "request off"},
    {kCloses, kFrame, ""},
    {"scaler-vanishes", kFrame, "fault driver SCA0: missing"},
    {"reset-vanishes", kFrame, "fault driver DVR1: missing"},
};
// clang-format on

// A distribution of the library may give other numbers elsewhere.
std::uint64_t Below(std::mt19937& random, std::uint64_t end) {
    return random() % end;
}

}  // namespace

std::span<const Flow> Flows() {
    return kFlows;
}

std::span<const FaultKind> FaultKinds() {
    return kKinds;
}

std::optional<End> RunFlow(const Flow& flow, WizardRun& run, CarDriver& driver) {
    if (flow.quick)
        run.RunScenario(kQuickUpdate);
    run.RunScenario(flow.begin);
    if (flow.first_card_is_empty)
        driver.ForgetImageOnce();
    if (flow.halfway.empty())
        return driver.Drive(kLongestDrive);
    const auto end = driver.Drive(kLongestDrive, [&] {
        return !run.screen().TextStartingWith(L"Update Percent : ").empty();
    });
    if (end || !run.unit().program().running())
        return end;
    run.RunScenario(flow.halfway);
    return driver.Drive(kLongestDrive);
}

std::string ToText(const Case& test_case) {
    std::ostringstream text;
    text << test_case.flow->name;
    for (const Fault& fault : test_case.faults)
        text << ' ' << fault.kind->name << '@' << kTriggerNames[fault.trigger].name << ':'
             << fault.number;
    return text.str();
}

Case ParseCase(const std::string& text) {
    std::istringstream words(text);
    std::string flow, kind, trigger;
    words >> flow >> std::ws;
    Case test_case{Named(flow, Flows())};
    while (std::getline(words, kind, '@')) {
        Fault fault{Named(kind, FaultKinds()), kCall, 0};
        std::getline(words, trigger, ':');
        fault.trigger = Trigger(Named(trigger, kTriggerNames) - kTriggerNames);
        if (!(words >> fault.number) || fault.number == 0 || fault.trigger > fault.kind->last)
            throw std::invalid_argument("'" + kind + "' cannot come there in '" + text + "'");
        test_case.faults.push_back(fault);
        words >> std::ws;
    }
    return test_case;
}

std::vector<Baseline> MeasureBaselines(const std::vector<const Flow*>& flows) {
    std::vector<Baseline> baselines;
    for (const Flow* const flow : flows)
        baselines.push_back({flow, RunCase({flow})});
    return baselines;
}

std::vector<Case> Sweep(const std::vector<Baseline>& baselines,
                        const std::vector<const FaultKind*>& kinds, std::uint64_t every,
                        std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    for (const auto& [flow, result] : baselines)
        for (const FaultKind* const kind : kinds)
            for (std::size_t trigger = kCall; trigger <= kind->last; ++trigger)
                for (std::uint64_t number = 1 + Below(random, every);
                     number <= result.counts[trigger]; number += every)
                    cases.push_back({flow, {{kind, Trigger(trigger), number}}});
    return cases;
}

std::vector<Case> Sample(const std::vector<Baseline>& baselines,
                         const std::vector<const FaultKind*>& kinds, std::size_t faults,
                         std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<Case> cases;
    while (cases.size() < count) {
        const std::size_t turn = cases.size();
        const auto& [flow, result] = baselines[turn % baselines.size()];
        Case test_case{flow};
        while (test_case.faults.size() < faults) {
            const bool first = test_case.faults.empty();
            const FaultKind* const kind =
                kinds[first ? turn % kinds.size() : Below(random, kinds.size())];
            // A flow without a link has only calls.
            const std::size_t triggers = result.counts[kFrame] == 0 ? 1 : kind->last + 1;
            const auto trigger = Trigger(Below(random, triggers));
            test_case.faults.push_back({kind, trigger, 1 + Below(random, result.counts[trigger])});
        }
        cases.push_back(test_case);
    }
    return cases;
}

}  // namespace tests::campaign
