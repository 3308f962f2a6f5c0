#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace control {

// The protocol of a control socket: lines of UTF-8 text in both directions.
//
// A request is one line of the command language. Two kinds of lines can precede it: @FOLDER, the
// folder from which paths in the request start, and |TEXT, a line of a text that belongs to the
// request (a scenario for `run`).
//
// The reply consists of any number of lines and the outcome; the next request is read after that.
// Some requests (`watch`) do not end: the client hangs up.
//
//     |TEXT      a line of the reply
//     !NUMBER    that many lines were dropped here, because the client was slow to read
//     +          done
//     ~LINE      a line of the problem; more of it follows
//     -PROBLEM   refused, and the last line of why
//     ?PROBLEM   no command; what is wrong with its words, and what is allowed
struct Request {
    std::string line;
    std::string text = {};    // each line ends with \n
    std::string folder = {};  // absolute; empty if the client sent none
};

inline constexpr char kFolderMark = '@';
inline constexpr char kTextMark = '|';
inline constexpr char kLostMark = '!';
inline constexpr char kDoneMark = '+';
inline constexpr char kProblemMark = '~';
inline constexpr char kRefusedMark = '-';
inline constexpr char kMisusedMark = '?';

inline constexpr std::size_t kMaxLine = std::size_t{64} * 1024;
inline constexpr std::size_t kMaxText = std::size_t{1024} * 1024;

// True for well-formed UTF-8 without control characters other than the tab.
bool IsPlainText(std::string_view line);

// Replaces every byte that IsPlainText refuses by a ?, so that the text can be printed to a
// terminal.
std::string PlainText(std::string_view text);

// Calls visit(line) for each line of the text, without the \n.
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
