#pragma once

#include <imgui.h>

#include <string>
#include <vector>

#include "unit/workbench/panel_context.h"

namespace unit {

// The command line at the bottom edge: Up and Down recall earlier commands, Tab completes. The last
// command's reply stands beside it, or below it if it is long.
class CommandBar {
  public:
    void Draw(PanelContext& context);

    // The text in the command line.
    std::string& line() { return line_; }

  private:
    static int Edit(ImGuiInputTextCallbackData* data);
    void Recall(ImGuiInputTextCallbackData& data);
    void Complete(ImGuiInputTextCallbackData& data);
    void DrawReply(PanelContext& context) const;

    PanelContext* context_ = nullptr;
    std::string line_;
    std::vector<std::string> typed_;
    std::size_t recalled_ = 0;
    std::string proposals_;
};

// The executed commands, and all commands that there are.
class CommandView {
  public:
    // A click on a command puts it into `line`.
    void Draw(PanelContext& context, std::string& line);

  private:
    std::string filter_;
    std::size_t shown_ = 0;
};

}  // namespace unit
