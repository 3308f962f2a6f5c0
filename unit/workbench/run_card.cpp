#include "unit/workbench/run_card.h"

#include <imgui.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "unit/workbench/readable.h"
#include "unit/workbench/widgets.h"

namespace unit {
namespace {

constexpr float kCardWidth = 430;

constexpr ImGuiWindowFlags kCard = ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoCollapse |
                                   ImGuiWindowFlags_AlwaysAutoResize;

// A window in the middle of the unit's screen, within the window.
bool BeginCard(const PanelContext& context, const Area& screen, const char* title, bool& open) {
    const ImVec2 window = ImGui::GetIO().DisplaySize;
    const float width = std::max(1.0F, std::min(kCardWidth * context.scale, window.x - 16));
    ImGui::SetNextWindowSizeConstraints({width, 0}, {width, std::max(1.0F, window.y - 16)});
    ImGui::SetNextWindowPos({screen.x + screen.width / 2, screen.y + screen.height / 2},
                            ImGuiCond_Appearing, {0.5F, 0.5F});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowBorderSize, 1);
    const bool visible = ImGui::Begin(title, &open, kCard);
    ImGui::PopStyleVar();
    // The window may have become smaller.
    const ImVec2 position = ImGui::GetWindowPos();
    const ImVec2 size = ImGui::GetWindowSize();
    const ImVec2 inside = {std::clamp(position.x, 0.0F, std::max(0.0F, window.x - size.x)),
                           std::clamp(position.y, 0.0F, std::max(0.0F, window.y - size.y))};
    if (inside.x != position.x || inside.y != position.y)
        ImGui::SetWindowPos(inside);
    ImGui::PushTextWrapPos(0);
    return visible;
}

void EndCard() {
    ImGui::PopTextWrapPos();
    ImGui::End();
}

template <class Entries, class Text>
bool WriteLines(const std::filesystem::path& file, const Entries& entries, Text text) {
    std::ofstream output(file, std::ios::binary | std::ios::trunc);
    for (const auto& entry : entries)
        output << ReadableTime(entry.time) << "  " << text(entry) << '\n';
    output.close();
    return output.good();
}

// A folder that did not exist before; empty, with one line in `problem`, when none can be made.
std::filesystem::path NewFolder(const std::string& out, std::string& problem) {
    std::error_code error;
    std::filesystem::create_directories(out, error);
    for (int number = 1; !error; ++number) {
        std::filesystem::path folder =
            std::filesystem::path(out) / ("run-" + std::to_string(number));
        if (std::filesystem::create_directory(folder, error))
            return folder;
    }
    problem = "cannot make a folder in " + out + ": " + error.message();
    return {};
}

}  // namespace

void RunCard::Show(Verdict verdict, bool more) {
    verdict_ = std::move(verdict);
    shown_ = true;
    more_ = more;
    saved_.clear();
}

AfterRun RunCard::Draw(PanelContext& context, const Area& screen) {
    if (!shown_)
        return AfterRun::kNothing;
    AfterRun wish = AfterRun::kNothing;
    bool open = true;
    if (BeginCard(context, screen, "The run is over", open)) {
        ImGui::PushFont(context.fonts.heading);
        ColoredText(verdict_.good ? color::Good() : color::Bad(), verdict_.headline);
        ImGui::PopFont();
        for (const std::string& line : verdict_.details)
            ColoredText(color::Text(), line);
        ImGui::Spacing();
        const auto button = [&wish](const char* label, AfterRun choice, const char* tip) {
            if (ImGui::Button(label))
                wish = choice;
            Tip(tip);
        };
        if (more_) {
            button("Next scenario", AfterRun::kNext, "Runs the next scenario on a new unit.");
            ImGui::SameLine();
        }
        button("Restart", AfterRun::kRestart, "Runs again on a new unit in this window.");
        ImGui::SameLine();
        button("Save", AfterRun::kSave,
               "Saves the last screen, the debug output and the serial line in a new folder.");
        ImGui::SameLine();
        button("Close the window", AfterRun::kClose, "Ends the command.");
        if (!saved_.empty())
            ColoredText(color::Accent(), saved_);
    }
    EndCard();
    shown_ = open;
    return wish;
}

void DrawFirstRunCard(PanelContext& context, const Area& screen) {
    if (context.view.introduced)
        return;
    bool open = true;
    if (BeginCard(context, screen, "Welcome", open)) {
        for (const char* const line :
             {"The mouse is the finger on the unit's screen.",
              "The blue text at the top right says what to do next.",
              "Every button executes a command; point at it to see which one.",
              "F1, or the mouse over a Japanese text, shows it in English.",
              "Try a fault: group Faults. Type commands in the line at the bottom."})
            ColoredText(color::Text(), line);
        ImGui::Spacing();
        if (ImGui::Button("Begin"))
            open = false;
    }
    EndCard();
    context.view.introduced = !open;
}

std::string SaveRun(const History& history, const Picture& screen, const std::string& out) {
    std::string problem;
    const std::filesystem::path folder = NewFolder(out, problem);
    if (folder.empty())
        return problem;
    if (!WritePng(screen, (folder / "screen.png").string(), problem))
        return problem;
    const auto line_text = [](const History::Line& line) { return line.text; };
    const auto frame_text = [](const LineEntry& entry) { return entry.Text(); };
    for (const char* const name : {"debug-output.txt", "line.txt"}) {
        const bool log = name == std::string_view("debug-output.txt");
        if (!(log ? WriteLines(folder / name, history.log().entries(), line_text)
                  : WriteLines(folder / name, history.traffic().entries(), frame_text)))
            return "cannot write " + (folder / name).string();
    }
    return "Saved in " + folder.string();
}

}  // namespace unit
