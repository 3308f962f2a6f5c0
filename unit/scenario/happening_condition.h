#pragma once

#include "unit/scenario/conditions.h"

namespace unit {

// The place of a kind among the variant's.
template <class Kind, class... Kinds>
constexpr std::size_t IndexIn(const std::variant<Kinds...>*) {
    std::size_t index = 0;
    const bool found = ((std::is_same_v<Kind, Kinds> || (++index, false)) || ...);
    return found ? index : sizeof...(Kinds);
}

// A condition about one kind of happening.
template <class Kind>
Condition About(std::string_view pattern, std::string_view help,
                bool (*matches)(const Kind&, const control::Values&)) {
    Condition condition{pattern, help};
    condition.kind = IndexIn<Kind>(static_cast<const Happening*>(nullptr));
    condition.matches = [matches](const Happening& happening, const control::Values& values) {
        const Kind* const kind = std::get_if<Kind>(&happening);
        return kind && matches(*kind, values);
    };
    return condition;
}

Condition FrameCondition();

}  // namespace unit
