#pragma once

#include <SDL.h>

#include "unit/commands/operator.h"
#include "unit/workbench/layout.h"

namespace unit {

// The mouse as the finger on the unit's screen. One that leaves the screen while it is down stays
// at the edge. Hardware's thread.
class Finger {
  public:
    explicit Finger(Operator& op) : operator_(op) {}

    // A mouse event, with the screen's place in the units of the event.
    void Follow(const SDL_Event& event, const Area& screen);

  private:
    Operator& operator_;
    bool down_ = false;
};

}  // namespace unit
