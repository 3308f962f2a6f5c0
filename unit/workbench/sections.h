#pragma once

#include <optional>
#include <string>

#include "unit/workbench/desk.h"

namespace unit {

// The groups of the panel, a file each.

void DrawWizardSection(Desk& desk);
void DrawScalerSection(Desk& desk);
void DrawViewSection(Desk& desk);

class CardSection {
  public:
    void Draw(Desk& desk);

  private:
    std::string folder_;
    std::string version_;
};

class PowerSection {
  public:
    void Draw(Desk& desk);

  private:
    int percent_ = 100;
    bool dragging_ = false;
};

class DvrSection {
  public:
    void Draw(Desk& desk);

  private:
    // The image on the card, read again when another card is in.
    std::string card_folder_;
    std::optional<std::string> image_;
    std::string firmware_;
};

class FaultSection {
  public:
    void Draw(Desk& desk);

  private:
    void DrawDvr(Desk& desk);
    void DrawUpdate(Desk& desk);
    static void DrawLine(Desk& desk);
    void DrawDrivers(Desk& desk);
    void DrawCalls(Desk& desk);

    int at_percent_ = 57;
    int driver_ = 0;
    std::string call_;
};

}  // namespace unit
