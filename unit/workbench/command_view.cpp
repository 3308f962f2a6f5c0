#include "unit/workbench/dock.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/text_filter.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

void DrawEntry(Desk& desk, const CommandRunner::Entry& entry) {
    ColoredText(color::kDim, ReadableTime(entry.time));
    ImGui::SameLine(80 * desk.scale);
    ImGui::BeginGroup();
    ColoredText(entry.done ? color::kText : color::kBad, entry.line);
    if (!entry.reply.empty()) {
        ImGui::PushTextWrapPos(0);
        ColoredText(entry.done ? color::kDim : color::kBad, entry.reply);
        ImGui::PopTextWrapPos();
    }
    ImGui::EndGroup();
}

// What can be typed as it stands: the words before the first placeholder or choice.
std::string Beginning(std::string_view pattern) {
    std::string words;
    while (!pattern.empty()) {
        const std::size_t end = std::min(pattern.find(' '), pattern.size());
        const std::string_view word = pattern.substr(0, end);
        if (word.find_first_of("[|ABCDEFGHIJKLMNOPQRSTUVWXYZ") != std::string_view::npos)
            return words;
        words += std::string(word) + (end < pattern.size() ? " " : "");
        pattern.remove_prefix(std::min(end + 1, pattern.size()));
    }
    return words;
}

}  // namespace

void CommandView::Draw(Desk& desk, std::string& line) {
    const float half = ImGui::GetContentRegionAvail().x / 2;
    ImGui::BeginChild("followed", {half, 0});
    ImGui::PushFont(desk.fonts.mono);
    if (desk.commands.entries().empty())
        ColoredText(color::kDim,
                    "Every button and key of the panel\nappears here as the command\n"
                    "that a scenario would use.");
    for (const CommandRunner::Entry& entry : desk.commands.entries())
        DrawEntry(desk, entry);
    ImGui::PopFont();
    if (desk.commands.entries().size() != shown_)
        ImGui::SetScrollHereY(1);
    shown_ = desk.commands.entries().size();
    ImGui::EndChild();
    ImGui::SameLine();
    ImGui::BeginChild("all");
    TextField("##filter", "All commands; filter by words", filter_, -1);
    ImGui::BeginChild("rows");
    for (const UnitTable::Row& row : desk.commands.table().rows()) {
        if (!Passes(std::string(row.pattern) + ' ' + std::string(row.help), filter_))
            continue;
        ImGui::PushFont(desk.fonts.mono);
        if (ImGui::Selectable(std::string(row.pattern).c_str())) {
            line = Beginning(row.pattern);
            desk.focus_command_line = true;
        }
        ImGui::PopFont();
        Tip(std::string(row.help).c_str());
    }
    ImGui::EndChild();
    ImGui::EndChild();
}

}  // namespace unit
