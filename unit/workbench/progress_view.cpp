#include <cmath>
#include <cstdio>

#include "platform/kernel/clock.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

// At least so much time is across the plot, in seconds.
constexpr double kShortest = 30;

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

// The latest update: it begins at the last report that is lower than the one before it.
std::size_t LatestUpdate(const std::deque<History::Percent>& percents) {
    for (std::size_t index = percents.size(); index-- > 1;)
        if (percents[index].percent <= 1 && percents[index - 1].percent > 1)
            return index;
    return 0;
}

}  // namespace

void DrawProgress(Desk& desk) {
    const auto& percents = desk.history.percents().entries();
    if (percents.empty()) {
        ColoredText(color::kDim,
                    "No update yet. Its percent is drawn here from the DVR's first report on.");
        return;
    }
    const std::size_t first = LatestUpdate(percents);
    const double from = Seconds(percents[first].time);
    const double to = std::max(Seconds(percents.back().time) + 1, from + kShortest);
    const ImVec2 corner = ImGui::GetCursorScreenPos();
    const ImVec2 room = ImGui::GetContentRegionAvail();
    const float left = 52 * desk.scale;
    const float below = 24 * desk.scale;
    const Plot plot{{corner.x + left, corner.y + 8},
                    {room.x - left - 20 * desk.scale, room.y - below - 8},
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

}  // namespace unit
