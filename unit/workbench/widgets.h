#pragma once

#include <string>

#include "unit/workbench/panel_context.h"

namespace unit {

// The panel's building blocks.

// Where values begin beside their labels, and texts beside their times; multiply by the scale.
inline constexpr float kValueColumn = 104;
inline constexpr float kTimeColumn = 80;

// The heading of a group; draw its content only when it returns true.
bool Group(const PanelContext& context, const char* title, bool initially_open = true);

// Begins a row with a label; the next item stands in the column of values.
void RowLabel(const PanelContext& context, const char* label);

// A row with a label and a value.
void Field(const PanelContext& context, const char* label, const std::string& value,
           const ImVec4& text_color = color::Text());

// Continues the row, on a new line of the value column when `width` does not fit.
void NextInRow(const PanelContext& context, float width = 0);

float ButtonWidth(const char* label);

// A button that executes a command. Its tip shows the command, its help and its key. `chosen` marks
// the unit's current state.
void CommandButton(PanelContext& context, const char* label, const std::string& command,
                   bool chosen = false);

// Several command buttons in a row that wraps.
struct Choice {
    const char* label;
    std::string command;
    bool chosen = false;
};
void CommandButtons(PanelContext& context, std::initializer_list<Choice> choices);

void ColoredText(const ImVec4& text_color, const std::string& text);

// The height of that many lines of text.
float LinesHeight(int lines);

// Shows a tip while the mouse is over the last item.
void Tip(const char* text);

// True when Enter was pressed in the field.
bool TextField(const char* id, const char* hint, std::string& text, float width);

}  // namespace unit
