#include "unit/workbench/command_views.h"

#include <imgui_stdlib.h>

#include <algorithm>

#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr float kLineShare = 0.5F;

std::string CommonStart(const std::vector<std::string>& words) {
    std::string start = words.front();
    for (const std::string& word : words)
        start.resize(
            static_cast<std::size_t>(std::ranges::mismatch(start, word).in1 - start.begin()));
    return start;
}

void DrawEntry(PanelContext& context, const CommandRunner::Entry& entry) {
    ColoredText(color::Dim(), ReadableTime(entry.time));
    ImGui::SameLine(kTimeColumn * context.scale);
    ImGui::BeginGroup();
    ColoredText(entry.done ? color::Text() : color::Bad(), entry.line);
    if (!entry.reply.empty()) {
        ImGui::PushTextWrapPos(0);
        ColoredText(entry.done ? color::Dim() : color::Bad(), entry.reply);
        ImGui::PopTextWrapPos();
    }
    ImGui::EndGroup();
}

// The words before the pattern's first placeholder or choice.
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

void CommandBar::Draw(PanelContext& context) {
    context_ = &context;
    ImGui::PushFont(context.fonts.mono);
    ImGui::AlignTextToFramePadding();
    ColoredText(color::Accent(), ">");
    ImGui::SameLine();
    if (context.focus_command_line)
        ImGui::SetKeyboardFocusHere();
    context.focus_command_line = false;
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x * kLineShare);
    constexpr ImGuiInputTextFlags kFlags =
        ImGuiInputTextFlags_EnterReturnsTrue | ImGuiInputTextFlags_CallbackHistory |
        ImGuiInputTextFlags_CallbackCompletion | ImGuiInputTextFlags_CallbackEdit;
    if (ImGui::InputTextWithHint("##command", "command: Enter executes, Tab completes, Up recalls",
                                 &line_, kFlags, Edit, this)) {
        if (!line_.empty()) {
            typed_.push_back(line_);
            context.commands.Execute(line_);
        }
        recalled_ = typed_.size();
        line_.clear();
        proposals_.clear();
        ImGui::SetKeyboardFocusHere(-1);
    }
    ImGui::SameLine();
    DrawReply(context);
    ImGui::PopFont();
}

void CommandBar::DrawReply(PanelContext& context) const {
    std::string text = proposals_;
    ImVec4 text_color = color::Dim();
    if (proposals_.empty() && !context.commands.entries().empty()) {
        const CommandRunner::Entry& last = context.commands.entries().back();
        const std::string first_line = last.reply.substr(0, last.reply.find('\n'));
        text = last.done ? last.line + (first_line.empty() ? ": done" : ": " + first_line)
                         : last.reply;
        text_color = last.done ? color::Good() : color::Bad();
    }
    const float padding = ImGui::GetStyle().WindowPadding.y;
    context.bar_height = ImGui::GetFrameHeight() + 2 * padding;
    // Beside the command line if it fits there, else below it.
    if (ImGui::CalcTextSize(text.c_str()).x > ImGui::GetContentRegionAvail().x ||
        text.find('\n') != std::string::npos) {
        ImGui::NewLine();
        const float width = std::max(1.0F, ImGui::GetContentRegionAvail().x);
        context.bar_height += ImGui::GetStyle().ItemSpacing.y +
                              ImGui::CalcTextSize(text.c_str(), nullptr, false, width).y;
    }
    ImGui::PushTextWrapPos(0);
    ColoredText(text_color, text);
    ImGui::PopTextWrapPos();
    // Only the first line of a long reply is shown.
    if (proposals_.empty() && !context.commands.entries().empty() &&
        context.commands.entries().back().done)
        Tip(context.commands.entries().back().reply.c_str());
}

int CommandBar::Edit(ImGuiInputTextCallbackData* data) {
    auto& bar = *static_cast<CommandBar*>(data->UserData);
    switch (data->EventFlag) {
        case ImGuiInputTextFlags_CallbackHistory:
            bar.Recall(*data);
            break;
        case ImGuiInputTextFlags_CallbackCompletion:
            bar.Complete(*data);
            break;
        default:
            bar.proposals_.clear();
            break;
    }
    return 0;
}

void CommandBar::Recall(ImGuiInputTextCallbackData& data) {
    if (data.EventKey == ImGuiKey_UpArrow && recalled_ > 0)
        --recalled_;
    else if (data.EventKey == ImGuiKey_DownArrow && recalled_ < typed_.size())
        ++recalled_;
    data.DeleteChars(0, data.BufTextLen);
    if (recalled_ < typed_.size())
        data.InsertChars(0, typed_[recalled_].c_str());
}

void CommandBar::Complete(ImGuiInputTextCallbackData& data) {
    const std::string before(data.Buf, static_cast<std::size_t>(data.CursorPos));
    const std::vector<std::string> words = context_->commands.Complete(before);
    if (words.empty())
        return;
    const std::size_t begun = before.size() - (before.find_last_of(' ') + 1);
    const std::string start = CommonStart(words) + (words.size() == 1 ? " " : "");
    data.InsertChars(data.CursorPos, start.c_str() + begun);
    proposals_.clear();
    if (words.size() > 1)
        for (const std::string& word : words)
            proposals_ += word + "  ";
}

void CommandView::Draw(PanelContext& context, std::string& line) {
    const float half = ImGui::GetContentRegionAvail().x / 2;
    ImGui::BeginChild("executed", {half, 0});
    ImGui::PushFont(context.fonts.mono);
    if (context.commands.entries().empty())
        ColoredText(color::Dim(),
                    "Buttons and keys of the panel\nappear here as the commands\n"
                    "that a scenario would use.");
    for (const CommandRunner::Entry& entry : context.commands.entries())
        DrawEntry(context, entry);
    ImGui::PopFont();
    if (context.commands.entries().size() != shown_)
        ImGui::SetScrollHereY(1);
    shown_ = context.commands.entries().size();
    ImGui::EndChild();
    ImGui::SameLine();
    ImGui::BeginChild("all");
    TextField("##filter", "All commands; filter: words to include", filter_, -1);
    ImGui::BeginChild("rows");
    for (const UnitTable::Row& row : context.commands.table().rows()) {
        if (!Matches(std::string(row.pattern) + ' ' + std::string(row.help), filter_))
            continue;
        ImGui::PushFont(context.fonts.mono);
        if (ImGui::Selectable(std::string(row.pattern).c_str())) {
            line = Beginning(row.pattern);
            context.focus_command_line = true;
        }
        ImGui::PopFont();
        Tip(std::string(row.help).c_str());
    }
    ImGui::EndChild();
    ImGui::EndChild();
}

}  // namespace unit
