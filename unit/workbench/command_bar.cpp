#include "unit/workbench/command_bar.h"

#include <imgui_stdlib.h>

#include <algorithm>

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

}  // namespace

void CommandBar::Draw(Desk& desk) {
    desk_ = &desk;
    ImGui::PushFont(desk.fonts.mono);
    ImGui::AlignTextToFramePadding();
    ColoredText(color::kAccent, ">");
    ImGui::SameLine();
    if (desk.focus_command_line)
        ImGui::SetKeyboardFocusHere();
    desk.focus_command_line = false;
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x * kLineShare);
    constexpr ImGuiInputTextFlags kFlags =
        ImGuiInputTextFlags_EnterReturnsTrue | ImGuiInputTextFlags_CallbackHistory |
        ImGuiInputTextFlags_CallbackCompletion | ImGuiInputTextFlags_CallbackEdit;
    if (ImGui::InputTextWithHint("##command", "command: Enter begins, Tab completes, Up recalls",
                                 &line_, kFlags, Edit, this)) {
        if (!line_.empty()) {
            typed_.push_back(line_);
            desk.commands.Follow(line_);
        }
        recalled_ = typed_.size();
        line_.clear();
        proposals_.clear();
        ImGui::SetKeyboardFocusHere(-1);
    }
    ImGui::SameLine();
    DrawReply(desk);
    ImGui::PopFont();
}

void CommandBar::DrawReply(Desk& desk) const {
    if (!proposals_.empty()) {
        ColoredText(color::kDim, proposals_);
        return;
    }
    if (desk.commands.entries().empty())
        return;
    const CommandRunner::Entry& last = desk.commands.entries().back();
    const std::string first_line = last.reply.substr(0, last.reply.find('\n'));
    if (last.done)
        ColoredText(color::kGood, last.line + (first_line.empty() ? ": done" : ": " + first_line));
    else
        ColoredText(color::kBad, first_line);
    Tip(last.reply.empty() ? last.line.c_str() : last.reply.c_str());
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
    const std::vector<std::string> words = desk_->commands.Complete(before);
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

}  // namespace unit
