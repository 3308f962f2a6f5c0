#pragma once

#include <cstddef>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

#include "dvrsim/dvr.h"
#include "dvrsim/protocol.h"

namespace dvrsim {

// The words for a value in commands and states, in the order of the values from 0 on.
inline constexpr std::string_view kRunningStateNames[] = {"initializing", "init-ok", "normal",
                                                          "rebooting", "shutting-down"};
inline constexpr std::string_view kCardStatusNames[] = {
    "plug-out", "plug-in", "broken", "formatting", "full-normal", "full-event", "full-both"};
inline constexpr std::string_view kModeNames[] = {"video", "photo", "play"};
inline constexpr std::string_view kStateNames[] = {"off",      "booting",         "normal",
                                                   "updating", "update-finished", "update-failed"};

static_assert(std::size(kRunningStateNames) == static_cast<int>(RunningState::kShuttingDown) + 1);
static_assert(std::size(kCardStatusNames) == static_cast<int>(CardStatus::kSpaceFullBothFile) + 1);
static_assert(std::size(kModeNames) == static_cast<int>(Mode::kPlay) + 1);
static_assert(std::size(kStateNames) == static_cast<int>(Dvr::State::kUpdateFailed) + 1);

constexpr std::span<const std::string_view> NamesOf(RunningState) {
    return kRunningStateNames;
}
constexpr std::span<const std::string_view> NamesOf(CardStatus) {
    return kCardStatusNames;
}
constexpr std::span<const std::string_view> NamesOf(Mode) {
    return kModeNames;
}
constexpr std::span<const std::string_view> NamesOf(Dvr::State) {
    return kStateNames;
}

// "unknown" for a number that is no value.
template <class Value>
constexpr std::string_view NameOf(Value value) {
    const auto names = NamesOf(value);
    const auto index = static_cast<std::size_t>(value);
    return index < names.size() ? names[index] : "unknown";
}

template <class Value>
constexpr std::optional<Value> ValueNamed(std::string_view name) {
    const auto names = NamesOf(Value{});
    for (std::size_t index = 0; index < names.size(); ++index)
        if (names[index] == name)
            return static_cast<Value>(index);
    return std::nullopt;
}

}  // namespace dvrsim
