#include <cstdio>

#include "unit/workbench/keys.h"
#include "unit/workbench/sections.h"
#include "unit/workbench/widgets.h"

namespace unit {

void DrawViewSection(Desk& desk) {
    if (!Group(desk, "View and keys"))
        return;
    RowLabel(desk, "Scale by");
    int whole = desk.scaling == Scaling::kWhole ? 1 : 0;
    ImGui::RadioButton("whole factors", &whole, 1);
    ImGui::SameLine();
    ImGui::RadioButton("smooth", &whole, 0);
    desk.scaling = whole != 0 ? Scaling::kWhole : Scaling::kSmooth;
    if (desk.meter.rate() > 0) {
        char text[64];
        std::snprintf(text, sizeof text, "%.0f a second while something moves", desk.meter.rate());
        Field(desk, "Pictures", text);
    }
    for (const KeyRow& row : Keys()) {
        ImGui::PushFont(desk.fonts.mono);
        ColoredText(color::kAccent, row.name);
        ImGui::PopFont();
        ImGui::SameLine(104 * desk.scale);
        ColoredText(color::kDim, row.does);
    }
}

}  // namespace unit
