#include "tests/campaign/case.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace tests::campaign {

namespace {

constexpr std::pair<std::string_view, Moment> kMomentNames[] = {
    {"call", Moment::kCall}, {"frame", Moment::kFrame}, {"byte", Moment::kByte}};

std::string_view NameOf(Moment moment) {
    return kMomentNames[static_cast<std::size_t>(moment)].first;
}

template <class Rows, class Name>
std::string Names(const Rows& rows, Name name) {
    std::string list;
    for (const auto& row : rows)
        list += (list.empty() ? "" : ", ") + std::string(name(row));
    return list;
}

template <class Number>
bool ReadNumber(std::string_view text, Number& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0;
}

// KIND@MOMENT:NUMBER
std::optional<Fault> ParseFault(const std::string& word, std::string& problem) {
    const std::size_t at = word.find('@');
    const std::size_t colon = word.find(':', at);
    if (at == std::string::npos || colon == std::string::npos) {
        problem = "'" + word + "' is no fault; one is written like fails@call:12";
        return std::nullopt;
    }
    const auto kind = std::ranges::find(FaultKinds(), word.substr(0, at), &FaultKind::name);
    if (kind == FaultKinds().end()) {
        problem = "there is no fault '" + word.substr(0, at) + "'; allowed is one of " +
                  Names(FaultKinds(), [](const FaultKind& row) { return row.name; });
        return std::nullopt;
    }
    const std::string moment = word.substr(at + 1, colon - at - 1);
    const auto row = std::ranges::find(kMomentNames, std::string_view(moment),
                                       [](const auto& each) { return each.first; });
    if (row == std::end(kMomentNames) || !Fits(*kind, row->second)) {
        problem = "'" + std::string(kind->name) + "' cannot come at a " + moment;
        return std::nullopt;
    }
    Fault fault{&*kind, row->second, 0};
    if (!ReadNumber(std::string_view(word).substr(colon + 1), fault.number)) {
        problem = "'" + word.substr(colon + 1) + "' is no number from 1 up";
        return std::nullopt;
    }
    return fault;
}

}  // namespace

std::string ToText(const Case& trial) {
    std::string text(trial.road->name);
    if (trial.seed != 1)
        text += "#" + std::to_string(trial.seed);
    for (const Fault& fault : trial.faults)
        text += " " + std::string(fault.kind->name) + "@" + std::string(NameOf(fault.moment)) +
                ":" + std::to_string(fault.number);
    return text;
}

std::optional<Case> ParseCase(std::string_view text, std::string& problem) {
    std::istringstream words{std::string(text)};
    std::string word;
    words >> word;
    const std::size_t hash = word.find('#');
    Case trial{FindRoad(word.substr(0, hash)), 1, {}};
    if (trial.road == nullptr) {
        problem = "there is no road '" + word.substr(0, hash) + "'; allowed is one of " +
                  Names(Roads(), [](const Road& road) { return road.name; });
        return std::nullopt;
    }
    if (hash != std::string::npos &&
        !ReadNumber(std::string_view(word).substr(hash + 1), trial.seed)) {
        problem = "'" + word.substr(hash + 1) + "' is no seed; allowed are numbers from 1 up";
        return std::nullopt;
    }
    while (words >> word) {
        const auto fault = ParseFault(word, problem);
        if (!fault)
            return std::nullopt;
        trial.faults.push_back(*fault);
    }
    return trial;
}

}  // namespace tests::campaign
