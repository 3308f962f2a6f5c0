#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace control {

// What goes over a control socket, both ways in lines of UTF-8 text.
//
// A request is one line of the command language. Before it may stand a line that begins with @ and
// tells the folder that paths in the request start from, and lines that begin with | and carry a
// text for it, a line of the text each (a scenario for `run`).
//
// The answer is any number of lines and, at the end, the outcome; only then the next request is
// read. Some requests (`watch`) have no end of their own: the client hangs up.
//
//     |TEXT      a line of the answer
//     !NUMBER    so many lines were left out here, because the client was slow to read
//     +          done
//     -PROBLEM   refused, and why
struct Request {
    std::string line;
    std::string text = {};    // each of its lines ended by \n
    std::string folder = {};  // absolute, or empty when the client told none
};

inline constexpr char kFolderMark = '@';
inline constexpr char kTextMark = '|';
inline constexpr char kLostMark = '!';
inline constexpr char kDoneMark = '+';
inline constexpr char kRefusedMark = '-';

inline constexpr std::size_t kMaxLine = std::size_t{64} * 1024;
inline constexpr std::size_t kMaxText = std::size_t{1024} * 1024;

// True for well-formed UTF-8 without control characters other than the tab.
bool IsPlainText(std::string_view line);

// The text with a ? in place of every byte that IsPlainText refuses: a file's own words may be told
// to a terminal.
std::string PlainText(std::string_view text);

// Calls visit(line) for each line of the text, without its end.
template <class Visit>
void ForEachLine(std::string_view text, Visit visit) {
    for (;;) {
        const std::size_t end = text.find('\n');
        if (end == std::string_view::npos)
            break;
        visit(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    if (!text.empty())
        visit(text);
}

}  // namespace control
