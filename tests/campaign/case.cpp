#include "tests/campaign/case.h"

#include <regex>

namespace tests::campaign {

namespace {

using End = CarDriver::End;

constexpr struct {
    std::string_view name;
} kTriggerRows[kTriggers] = {{"call"}, {"frame"}, {"byte"}};

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
    {kKeepsFailing, kCall, "fault any-call after SKIP times 1"},
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
    std::string text(test_case.flow->name);
    if (test_case.seed != 1)
        text += "#" + std::to_string(test_case.seed);
    for (const Fault& fault : test_case.faults)
        text += " " + std::string(fault.kind->name) + "@" +
                std::string(kTriggerRows[fault.trigger].name) + ":" + std::to_string(fault.number);
    return text;
}

Case ParseCase(const std::string& text) {
    static const std::regex whole(R"(([^ #]+)(?:#([1-9]\d{0,8}))?((?: \S+@\w+:[1-9]\d{0,8})*))");
    static const std::regex each(R"( (\S+)@(\w+):(\d+))");
    std::smatch words;
    if (!std::regex_match(text, words, whole))
        throw std::invalid_argument(
            "'" + text + "' is no case; one is written like normal#7 fails@call:12 drops@byte:3");
    Case test_case{Named("flow", words[1].str(), Flows())};
    if (words[2].matched)
        test_case.seed = static_cast<std::uint32_t>(std::stoul(words[2]));
    for (std::sregex_iterator word(words[3].first, words[3].second, each), end; word != end;
         ++word) {
        const auto* const kind = Named("fault", (*word)[1].str(), FaultKinds());
        const auto* const trigger = Named("trigger", (*word)[2].str(), kTriggerRows);
        test_case.faults.push_back(
            {kind, static_cast<Trigger>(trigger - kTriggerRows), std::stoull((*word)[3])});
        if (test_case.faults.back().trigger > kind->last)
            throw std::invalid_argument("'" + std::string(kind->name) + "' cannot come at a " +
                                        std::string(trigger->name));
    }
    return test_case;
}

}  // namespace tests::campaign
