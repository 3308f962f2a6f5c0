#include "unit/workbench/dock.h"

#include <cmath>
#include <cstdio>
#include <span>

#include "unit/line/frame_text.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr const char* kColumns[] = {"Time",  "Direction", "Type", "Command",
                                    "Query", "Payload",   "Sum"};
constexpr float kWidths[] = {76, 62, 40, 200, 46, 0, 46};

void DrawFrame(const LineEntry& entry) {
    const bool to_unit = entry.direction == Direction::kToUnit;
    const auto add = [](const std::string& text, const ImVec4& text_color = color::kText) {
        ImGui::TableNextColumn();
        ColoredText(text_color, text);
    };
    add(ReadableTime(entry.time), color::kDim);
    add(DirectionName(entry.direction), to_unit ? color::kGood : color::kAccent);
    if (entry.kind == Segment::Kind::kStray) {
        add("stray", color::kWarning);
        add("");
        add("");
        add(HexText(entry.bytes), color::kWarning);
        add("");
        return;
    }
    add(FrameTypeName(entry.type()));
    add(CodeName(entry.command()));
    add(entry.query() ? "yes" : "");
    add(PayloadText(entry.type(), entry.code(), entry.payload()));
    const bool good = entry.checksum_good();
    add(good ? "good" : "bad", good ? color::kDim : color::kBad);
}

// Draws those entries of a list, given by their numbers, that are scrolled into view.
template <class List, class DrawEntry>
void DrawVisible(const List& list, std::span<const std::uint64_t> numbers, DrawEntry draw) {
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(numbers.size()));
    while (clipper.Step())
        for (int row = clipper.DisplayStart; row < clipper.DisplayEnd; ++row) {
            const std::uint64_t number = numbers[static_cast<std::size_t>(row)];
            draw(list.entries()[static_cast<std::size_t>(number - list.dropped())]);
        }
}

const ImVec4& ColorOf(const std::string& line) {
    if (line.starts_with("line-fault "))
        return color::kWarning;
    const bool bad =
        line.find("fail!!!") != std::string::npos || line.find("Invalid") != std::string::npos;
    return bad ? color::kBad : color::kText;
}

constexpr double kMinPlotSeconds = 30;

struct Plot {
    ImVec2 origin;
    ImVec2 size;
    double from;
    double to;

    ImVec2 At(double time, double percent) const {
        return {origin.x + static_cast<float>((time - from) / (to - from)) * size.x,
                origin.y + (1 - static_cast<float>(percent) / 100) * size.y};
    }
};

double Seconds(std::chrono::microseconds time) {
    return static_cast<double>(time.count()) / 1e6;
}

void DrawGrid(const Plot& plot, ImDrawList& list) {
    const ImU32 line = ImGui::GetColorU32(ImGuiCol_Border);
    const ImU32 text = ImGui::GetColorU32(color::kDim);
    for (int percent = 0; percent <= 100; percent += 25) {
        const ImVec2 left = plot.At(plot.from, percent);
        list.AddLine(left, plot.At(plot.to, percent), line);
        const std::string label = std::to_string(percent) + " %";
        list.AddText({left.x - ImGui::CalcTextSize(label.c_str()).x - 6,
                      left.y - ImGui::GetTextLineHeight() / 2},
                     text, label.c_str());
    }
    const double step = plot.to - plot.from > 240 ? 60 : plot.to - plot.from > 80 ? 20 : 5;
    for (double time = std::ceil(plot.from / step) * step; time <= plot.to; time += step) {
        const ImVec2 foot = plot.At(time, 0);
        list.AddLine({foot.x, plot.origin.y}, foot, line);
        char label[32];
        std::snprintf(label, sizeof label, "%.0f s", time);
        list.AddText({foot.x - ImGui::CalcTextSize(label).x / 2, foot.y + 4}, text, label);
    }
}

void DrawUpdatePlot(PanelContext& context) {
    const auto& percents = context.history.percents().entries();
    if (percents.empty()) {
        ColoredText(color::kDim, "No update yet. This plots the percent that the DVR reports.");
        return;
    }
    const std::size_t first = LatestUpdate(percents);
    const double from = Seconds(percents[first].time);
    const double to = std::max(Seconds(percents.back().time) + 1, from + kMinPlotSeconds);
    const ImVec2 corner = ImGui::GetCursorScreenPos();
    const ImVec2 space = ImGui::GetContentRegionAvail();
    const float left = 52 * context.scale;
    const float below = 24 * context.scale;
    const Plot plot{{corner.x + left, corner.y + 8},
                    {space.x - left - 20 * context.scale, space.y - below - 8},
                    from,
                    to};
    if (plot.size.x < 20 || plot.size.y < 20)
        return;
    ImDrawList& list = *ImGui::GetWindowDrawList();
    DrawGrid(plot, list);
    const ImU32 accent = ImGui::GetColorU32(color::kAccent);
    for (std::size_t index = first; index < percents.size(); ++index) {
        const ImVec2 point = plot.At(Seconds(percents[index].time), percents[index].percent);
        if (index > first) {
            const ImVec2 before =
                plot.At(Seconds(percents[index - 1].time), percents[index - 1].percent);
            list.AddLine(before, {point.x, before.y}, accent, 1.5F);
            list.AddLine({point.x, before.y}, point, accent, 1.5F);
        }
        list.AddCircleFilled(point, 2.5F, accent, 8);
    }
    const std::string last = std::to_string(percents.back().percent) + " %";
    const ImVec2 end = plot.At(Seconds(percents.back().time), percents.back().percent);
    list.AddText({end.x + 6, end.y - ImGui::GetTextLineHeight()}, ImGui::GetColorU32(color::kText),
                 last.c_str());
}

}  // namespace

std::size_t LatestUpdate(const std::deque<History::Percent>& percents) {
    for (std::size_t index = percents.size(); index-- > 1;)
        if (percents[index].percent <= 1 && percents[index - 1].percent > 1)
            return index;
    return 0;
}

void TrafficView::Draw(PanelContext& context) {
    const auto& traffic = context.history.traffic();
    if (ImGui::Checkbox("Pause", &paused_))
        paused_at_ = traffic.count();
    ImGui::SameLine();
    if (ImGui::Button("Clear"))
        context.history.ClearTraffic();
    ImGui::SameLine();
    TextField("##filter", "Filter: words to include, -words to exclude", filter_, -1);
    const auto& entries = traffic.entries();
    shown_.Update(filter_, traffic.dropped(), traffic.count(),
                  [&](std::size_t index) { return Matches(entries[index].Text(), filter_); });
    constexpr ImGuiTableFlags kFlags = ImGuiTableFlags_ScrollY | ImGuiTableFlags_RowBg |
                                       ImGuiTableFlags_Resizable | ImGuiTableFlags_BordersInnerV;
    if (!ImGui::BeginTable("frames", std::size(kColumns), kFlags))
        return;
    ImGui::TableSetupScrollFreeze(0, 1);
    for (std::size_t column = 0; column < std::size(kColumns); ++column)
        ImGui::TableSetupColumn(kColumns[column],
                                kWidths[column] > 0 ? ImGuiTableColumnFlags_WidthFixed
                                                    : ImGuiTableColumnFlags_WidthStretch,
                                kWidths[column] * context.scale);
    ImGui::TableHeadersRow();
    const auto& numbers = shown_.numbers();
    const auto end = paused_ ? std::ranges::lower_bound(numbers, paused_at_) : numbers.end();
    ImGui::PushFont(context.fonts.mono);
    DrawVisible(traffic, {numbers.begin(), end}, [](const LineEntry& entry) {
        ImGui::TableNextRow();
        DrawFrame(entry);
    });
    ImGui::PopFont();
    if (!paused_ && ImGui::GetScrollY() >= ImGui::GetScrollMaxY())
        ImGui::SetScrollHereY(1);
    ImGui::EndTable();
}

void LogView::Draw(PanelContext& context) {
    const auto& log = context.history.log();
    ImGui::Checkbox("Scroll", &scrolls_);
    Tip("Scrolls to the newest line.");
    ImGui::SameLine();
    if (ImGui::Button("Clear"))
        context.history.ClearLog();
    ImGui::SameLine();
    TextField("##filter", "Filter: words to include, -words to exclude", filter_, -1);
    const auto& entries = log.entries();
    shown_.Update(filter_, log.dropped(), log.count(),
                  [&](std::size_t index) { return Matches(entries[index].text, filter_); });
    ImGui::BeginChild("lines", {0, 0}, false, ImGuiWindowFlags_HorizontalScrollbar);
    ImGui::PushFont(context.fonts.mono);
    DrawVisible(log, shown_.numbers(), [&](const History::Line& line) {
        ColoredText(color::kDim, ReadableTime(line.time));
        ImGui::SameLine(kTimeColumn * context.scale);
        ColoredText(ColorOf(line.text), line.text);
    });
    ImGui::PopFont();
    if (scrolls_)
        ImGui::SetScrollHereY(1);
    ImGui::EndChild();
}

void Dock::Draw(PanelContext& context, std::string& line) {
    if (!ImGui::BeginTabBar("tabs"))
        return;
    if (ImGui::BeginTabItem("Serial line")) {
        traffic_.Draw(context);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Debug output")) {
        log_.Draw(context);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Update")) {
        DrawUpdatePlot(context);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Commands")) {
        commands_.Draw(context, line);
        ImGui::EndTabItem();
    }
    ImGui::EndTabBar();
}

}  // namespace unit
