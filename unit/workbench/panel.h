#pragma once

#include "unit/workbench/command_bar.h"
#include "unit/workbench/desk.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/sections.h"

namespace unit {

// Everything in the window but the unit's screen. Hardware's thread, within an ImGui frame.
class Panel {
  public:
    void Draw(Desk& desk, const Layout& layout);

  private:
    void DrawPanel(Desk& desk);
    void DrawDock(Desk& desk);
    static void DrawSplitter(Desk& desk, const Layout& layout);

    CardSection card_;
    PowerSection power_;
    DvrSection dvr_;
    FaultSection faults_;
    TrafficView traffic_;
    LogView log_;
    CommandView commands_;
    CommandBar bar_;
};

}  // namespace unit
