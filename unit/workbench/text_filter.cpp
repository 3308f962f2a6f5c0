#include "unit/workbench/text_filter.h"

#include <algorithm>
#include <cctype>

namespace unit {
namespace {

bool Contains(std::string_view text, std::string_view word) {
    const auto alike = [](char left, char right) {
        return std::tolower(static_cast<unsigned char>(left)) ==
               std::tolower(static_cast<unsigned char>(right));
    };
    return std::search(text.begin(), text.end(), word.begin(), word.end(), alike) != text.end();
}

}  // namespace

bool Passes(std::string_view text, std::string_view filter) {
    while (!filter.empty()) {
        const std::size_t end = std::min(filter.find(' '), filter.size());
        std::string_view word = filter.substr(0, end);
        filter.remove_prefix(std::min(end + 1, filter.size()));
        const bool wanted = !word.starts_with('-');
        if (!wanted)
            word.remove_prefix(1);
        if (!word.empty() && Contains(text, word) != wanted)
            return false;
    }
    return true;
}

}  // namespace unit
