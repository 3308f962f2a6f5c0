#include "unit/events/hex_text.h"
#include "unit/line/frame_text.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/text_filter.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr const char* kColumns[] = {"Time",  "Direction", "Type", "Command",
                                    "Query", "Payload",   "Sum"};
constexpr float kWidths[] = {76, 62, 40, 200, 46, 0, 46};

void DrawFrame(const LineEntry& entry) {
    const bool to_unit = entry.direction == Direction::kToUnit;
    const auto cell = [](const std::string& text, const ImVec4& text_color = color::kText) {
        ImGui::TableNextColumn();
        ColoredText(text_color, text);
    };
    cell(ReadableTime(entry.time), color::kDim);
    cell(DirectionName(entry.direction), to_unit ? color::kGood : color::kAccent);
    if (entry.kind == Segment::Kind::kStray) {
        cell("stray", color::kWarning);
        cell("");
        cell("");
        cell(HexText(entry.bytes), color::kWarning);
        cell("");
        return;
    }
    cell(FrameTypeName(entry.type()));
    cell(CodeName(entry.command()));
    cell(entry.query() ? "yes" : "");
    cell(PayloadText(entry.type(), entry.code(), entry.payload()));
    const bool good = entry.checksum_good();
    cell(good ? "good" : "bad", good ? color::kDim : color::kBad);
}

}  // namespace

void TrafficView::Draw(Desk& desk) {
    const auto& traffic = desk.history.traffic();
    if (ImGui::Checkbox("Pause", &paused_))
        paused_at_ = traffic.count();
    ImGui::SameLine();
    if (ImGui::Button("Clear"))
        desk.history.ClearTraffic();
    ImGui::SameLine();
    TextField("##filter", "Filter: words that must be there, -words that must not", filter_, -1);
    const auto& entries = traffic.entries();
    shown_.Update(filter_, traffic.dropped(), traffic.count(),
                  [&](std::size_t index) { return Passes(entries[index].Text(), filter_); });
    constexpr ImGuiTableFlags kFlags = ImGuiTableFlags_ScrollY | ImGuiTableFlags_RowBg |
                                       ImGuiTableFlags_Resizable | ImGuiTableFlags_BordersInnerV;
    if (!ImGui::BeginTable("frames", std::size(kColumns), kFlags))
        return;
    ImGui::TableSetupScrollFreeze(0, 1);
    for (std::size_t column = 0; column < std::size(kColumns); ++column)
        ImGui::TableSetupColumn(kColumns[column],
                                kWidths[column] > 0 ? ImGuiTableColumnFlags_WidthFixed
                                                    : ImGuiTableColumnFlags_WidthStretch,
                                kWidths[column] * desk.scale);
    ImGui::TableHeadersRow();
    const auto& numbers = shown_.numbers();
    const auto end = paused_ ? std::ranges::lower_bound(numbers, paused_at_) : numbers.end();
    ImGui::PushFont(desk.fonts.mono);
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(end - numbers.begin()));
    while (clipper.Step())
        for (int row = clipper.DisplayStart; row < clipper.DisplayEnd; ++row) {
            ImGui::TableNextRow();
            DrawFrame(entries[static_cast<std::size_t>(numbers[static_cast<std::size_t>(row)] -
                                                       traffic.dropped())]);
        }
    ImGui::PopFont();
    if (!paused_ && ImGui::GetScrollY() >= ImGui::GetScrollMaxY())
        ImGui::SetScrollHereY(1);
    ImGui::EndTable();
}

}  // namespace unit
