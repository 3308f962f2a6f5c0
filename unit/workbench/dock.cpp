#include "unit/workbench/dock.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <span>
#include <utility>

#include "unit/line/frame_text.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr const char* kColumns[] = {"Time",  "Direction", "Type", "Command",
                                    "Query", "Payload",   "Sum"};
constexpr float kWidths[] = {76, 62, 40, 200, 46, 0, 46};
constexpr float kFindWidth = 190;

ImU32 FoundColor() {
    ImVec4 tone = color::Accent();
    tone.w = 0.3F;
    return ImGui::GetColorU32(tone);
}

// The frame's bytes as they passed on the line.
void BytesTip(const PanelContext& context, const LineEntry& entry) {
    ImGui::BeginTooltip();
    ImGui::PushFont(context.fonts.mono);
    constexpr std::size_t kRow = 16;
    const std::span<const std::uint8_t> bytes = entry.bytes;
    for (std::size_t from = 0; from < bytes.size(); from += kRow)
        ImGui::TextUnformatted(
            HexText(bytes.subspan(from, std::min(kRow, bytes.size() - from))).c_str());
    ImGui::PopFont();
    ColoredText(color::Dim(), std::to_string(bytes.size()) + " bytes");
    ImGui::EndTooltip();
}

void DrawFrame(const LineEntry& entry, bool found) {
    const bool to_unit = entry.direction == Direction::kToUnit;
    const auto add = [](const std::string& text, const ImVec4& text_color = color::Text()) {
        ImGui::TableNextColumn();
        ColoredText(text_color, text);
    };
    if (found)
        ImGui::TableSetBgColor(ImGuiTableBgTarget_RowBg1, FoundColor());
    add(ReadableTime(entry.time), color::Dim());
    add(DirectionName(entry.direction), to_unit ? color::Good() : color::Accent());
    if (entry.kind == Segment::Kind::kStray) {
        add("stray", color::Warning());
        add("");
        add("");
        add(HexText(entry.bytes), color::Warning());
        add("");
        return;
    }
    add(FrameTypeName(entry.type()));
    add(CodeName(entry.command()));
    add(entry.query() ? "yes" : "");
    add(PayloadText(entry.type(), entry.code(), entry.payload()));
    const bool good = entry.checksum_good();
    add(good ? "good" : "bad", good ? color::Dim() : color::Bad());
}

const ImVec4& ColorOf(const std::string& line) {
    if (line.starts_with("line-fault "))
        return color::Warning();
    const bool bad =
        line.find("fail!!!") != std::string::npos || line.find("Invalid") != std::string::npos;
    return bad ? color::Bad() : color::Text();
}

// Saves in the current folder, under the name or, where that exists, with a number before its
// ending. Returns a line with the name, or with the error.
std::string SaveText(const std::string& name, const std::string& text) {
    const std::filesystem::path wanted = name;
    std::filesystem::path file = wanted;
    std::error_code error;
    for (int number = 2; std::filesystem::exists(file, error); ++number)
        file = wanted.stem().string() + "-" + std::to_string(number) + wanted.extension().string();
    std::ofstream output(file, std::ios::binary | std::ios::trunc);
    output << text;
    output.close();
    return output ? "Saved in " + file.string() + "." : "Cannot write " + file.string() + ".";
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
    const ImU32 text = ImGui::GetColorU32(color::Dim());
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

// A mark at each time when the operator set or cleared a fault, or a fault took effect.
void DrawFaults(const PanelContext& context, const Plot& plot, ImDrawList& list) {
    const ImU32 tone = ImGui::GetColorU32(color::Warning());
    const ImVec2 mouse = ImGui::GetIO().MousePos;
    const auto mark = [&](std::chrono::microseconds time, const std::string& text) {
        if (Seconds(time) < plot.from || Seconds(time) > plot.to)
            return;
        const ImVec2 foot = plot.At(Seconds(time), 0);
        const float size = 5 * context.scale;
        list.AddLine({foot.x, plot.origin.y}, foot, tone);
        list.AddTriangleFilled({foot.x - size, plot.origin.y}, {foot.x + size, plot.origin.y},
                               {foot.x, plot.origin.y + 1.5F * size}, tone);
        if (std::abs(mouse.x - foot.x) <= size && mouse.y >= plot.origin.y && mouse.y <= foot.y &&
            ImGui::IsWindowHovered())
            ImGui::SetTooltip("%s s  %s", ReadableTime(time).c_str(), text.c_str());
    };
    for (const CommandRunner::Entry& entry : context.commands.entries())
        if (entry.done && entry.line.starts_with("fault "))
            mark(entry.time, entry.line);
    for (const History::Line& fault : context.history.faults().entries())
        mark(fault.time, fault.text);
}

void DrawUpdatePlot(PanelContext& context) {
    const auto& percents = context.history.percents().entries();
    if (percents.empty()) {
        ColoredText(color::Dim(), "No update yet. This plots the percent that the DVR reports.");
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
    DrawFaults(context, plot, list);
    const ImU32 accent = ImGui::GetColorU32(color::Accent());
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
    list.AddText({end.x + 6, end.y - ImGui::GetTextLineHeight()}, ImGui::GetColorU32(color::Text()),
                 last.c_str());
}

}  // namespace

std::size_t LatestUpdate(const std::deque<History::Percent>& percents) {
    for (std::size_t index = percents.size(); index-- > 1;)
        if (percents[index].percent <= 1 && percents[index - 1].percent > 1)
            return index;
    return 0;
}

ListControls::Wish ListControls::Draw(PanelContext& context, std::uint64_t count) {
    Wish wish = Wish::kNothing;
    if (ImGui::Checkbox("Pause", &paused_))
        paused_at_ = count;
    Tip("Keeps the list as it is now. Without it, the list follows its newest entry.");
    const auto button = [&wish](const char* label, Wish choice, const char* tip) {
        ImGui::SameLine();
        if (ImGui::Button(label))
            wish = choice;
        Tip(tip);
    };
    button("Clear", Wish::kClear, "Empties the list.");
    button("Copy", Wish::kCopy, "Copies the entries that are shown to the clipboard.");
    button("Save", Wish::kSave, "Saves the entries that are shown in the current folder.");
    ImGui::SameLine();
    const float find_width = kFindWidth * context.scale;
    const float filter_width =
        ImGui::GetContentRegionAvail().x - find_width - ImGui::GetStyle().ItemSpacing.x;
    TextField("##filter", "Filter: words to include, -words to exclude", filter_,
              std::max(1.0F, filter_width));
    ImGui::SameLine();
    if (TextField("##find", "Find: Enter for the next", find_, -1)) {
        wish = Wish::kFind;
        ImGui::SetKeyboardFocusHere(-1);
    }
    return wish;
}

std::span<const std::uint64_t> ListControls::Shown(const FilteredList& list) const {
    const auto& numbers = list.numbers();
    const auto end = paused_ ? std::ranges::lower_bound(numbers, paused_at_) : numbers.end();
    return {numbers.begin(), end};
}

void ListControls::ScrollToNewest() const {
    if (!paused_ && ImGui::GetScrollY() >= ImGui::GetScrollMaxY())
        ImGui::SetScrollHereY(1);
}

template <class List>
template <class Text>
bool ListView<List>::DrawControls(PanelContext& context, const List& list, const char* file,
                                  Text text) {
    const ListControls::Wish wish = controls_.Draw(context, list.count());
    const auto& entries = list.entries();
    shown_.Update(controls_.filter(), list.dropped(), list.count(), [&](std::size_t index) {
        return Matches(text(entries[index]), controls_.filter());
    });
    const auto numbers = controls_.Shown(shown_);
    const auto entry = [&](std::uint64_t number) -> const auto& {
        return entries[static_cast<std::size_t>(number - list.dropped())];
    };
    if (wish == ListControls::Wish::kCopy || wish == ListControls::Wish::kSave) {
        std::string all;
        for (const std::uint64_t number : numbers)
            all += ReadableTime(entry(number).time) + "  " + text(entry(number)) + '\n';
        if (wish == ListControls::Wish::kSave) {
            context.dock_note = SaveText(file, all);
        } else {
            ImGui::SetClipboardText(all.c_str());
            context.dock_note = "Copied " + std::to_string(numbers.size()) + " entries.";
        }
    }
    if (wish == ListControls::Wish::kFind) {
        // The next match after the last one found, from the start again at the end.
        const auto after = found_ ? std::ranges::upper_bound(numbers, *found_) : numbers.begin();
        const auto matches = [&](std::uint64_t number) {
            return Matches(text(entry(number)), controls_.find());
        };
        auto next = std::find_if(after, numbers.end(), matches);
        if (next == numbers.end())
            next = std::find_if(numbers.begin(), after, matches);
        const bool any = next != numbers.end() && matches(*next);
        found_ = any ? std::optional(*next) : std::nullopt;
        scroll_to_found_ = any;
        context.dock_note = any ? "" : "Found nothing.";
    }
    return wish == ListControls::Wish::kClear;
}

template <class List>
template <class DrawRow>
void ListView<List>::DrawRows(const List& list, DrawRow draw) {
    const auto numbers = controls_.Shown(shown_);
    ImGuiListClipper clipper;
    clipper.Begin(static_cast<int>(numbers.size()));
    while (clipper.Step())
        for (int row = clipper.DisplayStart; row < clipper.DisplayEnd; ++row) {
            const std::uint64_t number = numbers[static_cast<std::size_t>(row)];
            draw(list.entries()[static_cast<std::size_t>(number - list.dropped())],
                 number == found_);
        }
    if (std::exchange(scroll_to_found_, false)) {
        const auto row = std::ranges::lower_bound(numbers, *found_) - numbers.begin();
        const float top = clipper.ItemsHeight * static_cast<float>(row);
        ImGui::SetScrollY(std::max(0.0F, top - ImGui::GetWindowHeight() / 2));
        return;
    }
    controls_.ScrollToNewest();
}

void TrafficView::Draw(PanelContext& context) {
    const auto& traffic = context.history.traffic();
    const auto text = [](const LineEntry& entry) { return entry.Text(); };
    if (DrawControls(context, traffic, "tolvane-line.txt", text))
        context.history.ClearTraffic();
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
    ImGui::PushFont(context.fonts.mono);
    DrawRows(traffic, [&context](const LineEntry& entry, bool found) {
        ImGui::TableNextRow();
        DrawFrame(entry, found);
        const float top = ImGui::GetItemRectMin().y;
        const float left = ImGui::GetWindowPos().x;
        if (ImGui::IsWindowHovered() &&
            ImGui::IsMouseHoveringRect(
                {left, top}, {left + ImGui::GetWindowWidth(), top + ImGui::GetTextLineHeight()},
                false))
            BytesTip(context, entry);
    });
    ImGui::PopFont();
    ImGui::EndTable();
}

void LogView::Draw(PanelContext& context) {
    const auto& log = context.history.log();
    const auto text = [](const History::Line& line) { return line.text; };
    if (DrawControls(context, log, "tolvane-debug-output.txt", text))
        context.history.ClearLog();
    ImGui::BeginChild("lines", {0, 0}, false, ImGuiWindowFlags_HorizontalScrollbar);
    ImGui::PushFont(context.fonts.mono);
    DrawRows(log, [&context](const History::Line& line, bool found) {
        if (found) {
            const ImVec2 corner = ImGui::GetCursorScreenPos();
            ImGui::GetWindowDrawList()->AddRectFilled(
                corner, {corner.x + ImGui::GetWindowWidth(), corner.y + ImGui::GetTextLineHeight()},
                FoundColor());
        }
        ColoredText(color::Dim(), ReadableTime(line.time));
        ImGui::SameLine(kTimeColumn * context.scale);
        ColoredText(ColorOf(line.text), line.text);
    });
    ImGui::PopFont();
    ImGui::EndChild();
}

// The plot's percents as a table that a spreadsheet reads.
void Dock::DrawUpdate(PanelContext& context) {
    const auto table = [&context] {
        std::string text = "seconds,percent\n";
        for (const History::Percent& report : context.history.percents().entries())
            text += ReadableTime(report.time) + "," + std::to_string(report.percent) + "\n";
        return text;
    };
    if (ImGui::Button("Copy")) {
        ImGui::SetClipboardText(table().c_str());
        context.dock_note = "Copied as a table.";
    }
    Tip("Copies all reported percents as a table.");
    ImGui::SameLine();
    if (ImGui::Button("Save"))
        context.dock_note = SaveText("tolvane-update.csv", table());
    Tip("Saves all reported percents as a table in the current folder.");
    DrawUpdatePlot(context);
}

void Dock::Draw(PanelContext& context, std::string& line) {
    // Beside the tabs: a line of its own would move the list.
    const ImVec2 corner = ImGui::GetCursorScreenPos();
    const float left =
        ImGui::GetContentRegionAvail().x - ImGui::CalcTextSize(context.dock_note.c_str()).x;
    ImGui::GetWindowDrawList()->AddText(
        {corner.x + left, corner.y + ImGui::GetStyle().FramePadding.y},
        ImGui::GetColorU32(color::Accent()), context.dock_note.c_str());
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
        DrawUpdate(context);
        ImGui::EndTabItem();
    }
    if (ImGui::BeginTabItem("Commands")) {
        commands_.Draw(context, line);
        ImGui::EndTabItem();
    }
    ImGui::EndTabBar();
}

}  // namespace unit
