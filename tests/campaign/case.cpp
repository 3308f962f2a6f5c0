#include "tests/campaign/case.h"

#include <regex>

namespace tests::campaign {

namespace {

constexpr struct {
    std::string_view name;
} kTriggerRows[kTriggers] = {{"call"}, {"frame"}, {"byte"}};

}  // namespace

std::string ToText(const Case& trial) {
    std::string text(trial.flow->name);
    if (trial.seed != 1)
        text += "#" + std::to_string(trial.seed);
    for (const Fault& fault : trial.faults)
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
    Case trial{Named("flow", words[1].str(), Flows()), 1, {}};
    if (words[2].matched)
        trial.seed = static_cast<std::uint32_t>(std::stoul(words[2]));
    for (std::sregex_iterator word(words[3].first, words[3].second, each), end; word != end;
         ++word) {
        const auto* const kind = Named("fault", (*word)[1].str(), FaultKinds());
        const auto* const trigger = Named("trigger", (*word)[2].str(), kTriggerRows);
        trial.faults.push_back(
            {kind, static_cast<Trigger>(trigger - kTriggerRows), std::stoull((*word)[3])});
        if (trial.faults.back().trigger > kind->last)
            throw std::invalid_argument("'" + std::string(kind->name) + "' cannot come at a " +
                                        std::string(trigger->name));
    }
    return trial;
}

}  // namespace tests::campaign
