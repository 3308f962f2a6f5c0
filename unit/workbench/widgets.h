#pragma once

#include <string>

#include "unit/workbench/desk.h"

namespace unit {

// The panel's building blocks.

// A group that folds; draw its content only when it returns true.
bool Group(const Desk& desk, const char* title, bool open_at_first = true);

// Begins a row: a dim label, and what follows stands in the column of values.
void RowLabel(const Desk& desk, const char* label);

// A row with a value.
void Field(const Desk& desk, const char* label, const std::string& value,
           const ImVec4& text_color = color::kText);

// Goes on in the row, or in a new line of the value column when `width` more does not fit.
void NextInRow(const Desk& desk, float width = 0);

// How wide a button with that caption is.
float ButtonWidth(const char* label);

// A button that follows a command when it is pressed. The tip under the mouse tells the command,
// what it does and its key. `chosen` marks the state that the unit is in.
void CommandButton(Desk& desk, const char* label, const std::string& command, bool chosen = false);

// Several of them in a row that wraps.
struct Choice {
    const char* label;
    std::string command;
    bool chosen = false;
};
void CommandButtons(Desk& desk, std::initializer_list<Choice> choices);

// Text in a colour.
void ColoredText(const ImVec4& text_color, const std::string& text);

// A tip while the mouse is over the last item.
void Tip(const char* text);

// A text field; true when Enter was pressed in it.
bool TextField(const char* id, const char* hint, std::string& text, float width);

}  // namespace unit
