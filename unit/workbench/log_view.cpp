#include "unit/workbench/dock.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/text_filter.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

const ImVec4& ColorOf(const std::string& line) {
    if (line.starts_with("line fault: "))
        return color::kWarning;
    const bool bad =
        line.find("fail!!!") != std::string::npos || line.find("Invalid") != std::string::npos;
    return bad ? color::kBad : color::kText;
}

}  // namespace

void LogView::Draw(Desk& desk) {
    const auto& log = desk.history.log();
    ImGui::Checkbox("Follow", &follows_);
    Tip("Keeps the newest line in sight.");
    ImGui::SameLine();
    if (ImGui::Button("Clear"))
        desk.history.ClearLog();
    ImGui::SameLine();
    TextField("##filter", "Filter: words that must be there, -words that must not", filter_, -1);
    const auto& entries = log.entries();
    shown_.Update(filter_, log.dropped(), log.count(),
                  [&](std::size_t index) { return Passes(entries[index].text, filter_); });
    ImGui::BeginChild("lines", {0, 0}, false, ImGuiWindowFlags_HorizontalScrollbar);
    const auto& numbers = shown_.numbers();
    ImGui::PushFont(desk.fonts.mono);
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(numbers.size()));
    while (clipper.Step())
        for (int row = clipper.DisplayStart; row < clipper.DisplayEnd; ++row) {
            const History::Line& line = entries[static_cast<std::size_t>(
                numbers[static_cast<std::size_t>(row)] - log.dropped())];
            ColoredText(color::kDim, ReadableTime(line.time));
            ImGui::SameLine(80 * desk.scale);
            ColoredText(ColorOf(line.text), line.text);
        }
    ImGui::PopFont();
    if (follows_)
        ImGui::SetScrollHereY(1);
    ImGui::EndChild();
}

}  // namespace unit
