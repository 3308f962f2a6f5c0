#include "control/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "control/words.h"

namespace control {
namespace {

// The parameters of "select graphic rendition".
struct Colour {
    Tone tone;
    std::string_view parameters;
};

constexpr Colour kColours[] = {
    {Tone::kPassed, "32"},     // green
    {Tone::kFailed, "31"},     // red
    {Tone::kError, "1;31"},    // bold red
    {Tone::kNotice, "1;33"},   // bold yellow
    {Tone::kCommand, "36"},    // cyan
    {Tone::kFrame, "36"},      // cyan
    {Tone::kBroadcast, "34"},  // blue
    {Tone::kInput, "32"},      // green
    {Tone::kFault, "35"},      // magenta
};

constexpr std::size_t kUsualWidth = 80;

std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

bool IsTerminal(std::FILE* stream) {
    const std::string_view kind = Variable("TERM");
    return !kind.empty() && kind != "dumb" && isatty(fileno(stream)) != 0;
}

bool ShowsColours(std::FILE* stream) {
    return Variable("NO_COLOR").empty() && IsTerminal(stream);
}

std::size_t TerminalWidth(std::FILE* stream) {
    winsize size{};
    if (ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const auto columns = ReadNumber(Variable("COLUMNS"));
    return columns && *columns > 0 ? static_cast<std::size_t>(*columns) : kUsualWidth;
}

std::string Coloured(Tone tone, std::string_view text, std::FILE* stream) {
    if (text.empty() || !ShowsColours(stream))
        return std::string(text);
    const auto* const colour = std::ranges::find(kColours, tone, &Colour::tone);
    return "\033[" + std::string(colour->parameters) + "m" + std::string(text) + "\033[m";
}

std::string ErrorText(std::string_view program, std::string_view problem, std::FILE* stream) {
    const std::size_t end = problem.find('\n');
    const bool explained = end != std::string_view::npos;
    return Coloured(Tone::kError, std::string(program) + ":", stream) + " " +
           (explained ? Coloured(Tone::kFailed, problem.substr(0, end), stream) : "") +
           std::string(problem.substr(explained ? end : 0)) + "\n";
}

void PrintError(std::string_view program, std::string_view problem, std::FILE* stream) {
    std::fputs(ErrorText(program, problem, stream).c_str(), stream);
}

}  // namespace control
