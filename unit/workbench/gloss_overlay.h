#pragma once

#include "unit/workbench/panel_context.h"

namespace unit {

// Shows the English of the text under the mouse, or of all texts on the unit's screen if
// `context.shows_glosses`. `screen` is the screen's place. Within an ImGui frame.
void DrawGlosses(PanelContext& context, const Area& screen);

}  // namespace unit
