#pragma once

#include <optional>
#include <string>

#include "unit/workbench/command_views.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/panel_context.h"

namespace unit {

// The panel's groups.

void DrawWizardSection(PanelContext& context);
void DrawScalerSection(PanelContext& context);

class CardSection {
  public:
    void Draw(PanelContext& context);

  private:
    std::string folder_;
    std::string version_;
};

class PowerSection {
  public:
    void Draw(PanelContext& context);

  private:
    int percent_ = 100;
    bool dragging_ = false;
};

class DvrSection {
  public:
    void Draw(PanelContext& context);

  private:
    // The image's version on this card; read again for another card.
    std::string card_folder_;
    std::optional<std::string> image_;
    std::string firmware_;
};

class FaultSection {
  public:
    void Draw(PanelContext& context);

  private:
    void DrawDvr(PanelContext& context);
    static void DrawLine(PanelContext& context);
    void DrawDrivers(PanelContext& context);
    void DrawCalls(PanelContext& context);
    static void DrawActive(PanelContext& context);

    int at_percent_ = 57;
    int driver_ = 0;
    std::string call_;
};

// Everything in the window except the unit's screen. Host thread, within an ImGui frame.
class Panel {
  public:
    void Draw(PanelContext& context, const Layout& layout);

  private:
    void DrawSections(PanelContext& context);
    static void DrawSplitter(PanelContext& context, const Area& dock);

    CardSection card_;
    PowerSection power_;
    DvrSection dvr_;
    FaultSection faults_;
    Dock dock_;
    CommandBar bar_;
};

}  // namespace unit
