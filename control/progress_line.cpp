#include "control/progress_line.h"

#include <algorithm>

#include "control/terminal.h"
#include "control/utf8.h"

namespace control {
namespace {

constexpr std::chrono::milliseconds kInterval{100};

struct FittingText {
    std::string_view text;
    std::size_t columns;
};

// The beginning of the text that fits into that many columns of a terminal, and the columns that it
// takes at most.
FittingText Fit(std::string_view text, std::size_t columns) {
    FittingText fitting{text.substr(0, 0), 0};
    while (fitting.text.size() < text.size()) {
        const std::string_view rest = text.substr(fitting.text.size());
        const std::size_t length = std::max<std::size_t>(Utf8Length(rest), 1);
        // A character of another script may take two.
        const std::size_t wide = length == 1 ? 1 : 2;
        if (fitting.columns + wide > columns)
            break;
        fitting = {text.substr(0, fitting.text.size() + length), fitting.columns + wide};
    }
    return fitting;
}

}  // namespace

ProgressLine::ProgressLine(std::FILE* terminal)
    : terminal_(terminal), shows_(IsTerminal(terminal)) {}

bool ProgressLine::Due() const {
    if (!shows_)
        return false;
    const std::scoped_lock lock(mutex_);
    return HostClock::now() >= next_;
}

void ProgressLine::Show(std::string_view text) {
    const std::scoped_lock lock(mutex_);
    const HostClock::time_point now = HostClock::now();
    if (!shows_ || now < next_)
        return;
    next_ = now + kInterval;
    Erase();
    // A terminal would go to the next line after its last column.
    const FittingText fitting = Fit(text, TerminalWidth(terminal_) - 1);
    std::fwrite(fitting.text.data(), 1, fitting.text.size(), terminal_);
    std::fflush(terminal_);
    columns_ = fitting.columns;
}

void ProgressLine::Clear() {
    const std::scoped_lock lock(mutex_);
    Erase();
}

bool ProgressLine::Print(std::string_view text, std::FILE* stream) {
    const std::scoped_lock lock(mutex_);
    Erase();
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
}

// With spaces: the user may want no escape sequences.
void ProgressLine::Erase() {
    if (columns_ == 0)
        return;
    std::fputs(("\r" + std::string(columns_, ' ') + "\r").c_str(), terminal_);
    std::fflush(terminal_);
    columns_ = 0;
}

}  // namespace control
