#pragma once

#include <imgui.h>

#include <string>

#include "unit/workbench/desk.h"

namespace unit {

// The line at the bottom edge where any command can be typed: Up and Down walk through those typed
// before, Tab completes. The reply of the last command stands beside it.
class CommandBar {
  public:
    void Draw(Desk& desk);

    // What is typed, for whoever proposes a command.
    std::string& line() { return line_; }

  private:
    static int Edit(ImGuiInputTextCallbackData* data);
    void Recall(ImGuiInputTextCallbackData& data);
    void Complete(ImGuiInputTextCallbackData& data);
    void DrawReply(Desk& desk) const;

    Desk* desk_ = nullptr;
    std::string line_;
    std::vector<std::string> typed_;
    std::size_t recalled_ = 0;
    std::string proposals_;
};

}  // namespace unit
