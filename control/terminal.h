#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace control {

// What a text on a terminal is. terminal.cpp has the table of their colours.
enum class Tone { kPassed, kFailed, kError, kNotice, kCommand, kFrame, kBroadcast, kInput, kFault };

// Whether the stream is a terminal that can do more than print lines.
bool IsTerminal(std::FILE* stream);
// The same, unless the user wants no colours: the variable NO_COLOR is not empty.
bool ShowsColours(std::FILE* stream);
// How many characters fit into a line of that terminal.
std::size_t TerminalWidth(std::FILE* stream);

// The text as it is printed to the stream: in the tone's colour, if the stream shows colours.
std::string Coloured(Tone tone, std::string_view text, std::FILE* stream);

// The line "PROGRAM: PROBLEM" of an error. Where more lines explain a problem, its first is
// coloured.
std::string ErrorText(std::string_view program, std::string_view problem, std::FILE* stream);
// Prints it.
void PrintError(std::string_view program, std::string_view problem, std::FILE* stream = stderr);

}  // namespace control
