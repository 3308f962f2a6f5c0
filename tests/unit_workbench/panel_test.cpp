#include "unit/workbench/panel.h"

#include <gtest/gtest.h>
#include <imgui_internal.h>

#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/commands/unit_commands.h"
#include "unit/workbench/changed_parts.h"
#include "unit/workbench/run_card.h"

namespace tests {
namespace {

// The panel in simulated time, drawn into memory.
class PanelTest : public testing::Test {
  protected:
    PanelTest() {
        ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr;
        ImGui::GetIO().DisplaySize = {1280, 800};
        std::string problem;
        EXPECT_TRUE(unit::LoadFonts(1, 1, context_.fonts, problem)) << problem;
        ImGui::GetIO().Fonts->Build();
        context_.unfold_all = true;
    }
    ~PanelTest() override {
        ImGui::DestroyContext();
        unit_.Close(std::chrono::seconds(10));
    }

    void Draw(int width = 1280, int height = 800) {
        const ImVec2 size = {static_cast<float>(width), static_cast<float>(height)};
        ImGui::GetIO().DisplaySize = size;
        ImGui::NewFrame();
        const unit::Layout layout =
            unit::PlaceAll(size.x, size.y, 1, 262, unit::Scaling::kWhole, context_.bar_height);
        panel_.Draw(context_, layout);
        unit::DrawFirstRunCard(context_, layout.screen);
        ImGui::Render();
    }

    unit::DebugLog log_{[](std::chrono::microseconds, const std::string&) {}};
    unit::VirtualUnit unit_{
        {}, {[] { return 0; }, res::ProgramResources()}, log_, [](const std::string&) {}};
    unit::Operator operator_{unit_, "/"};
    unit::History history_{unit_.events()};
    unit::CommandRunner commands_{unit::UnitCommands(), operator_};
    unit::ViewSettings view_{};
    unit::PanelContext context_{unit_, commands_, history_, view_};
    unit::Panel panel_;
};

TEST_F(PanelTest, ButtonsAndKeysExecuteValidCommands) {
    // Some buttons execute another command in another state.
    for (const char* const line :
         {"fault dvr none", "fault dvr silent on", "fault dvr fail-at 57",
          "fault dvr jump-back 57 20", "fault dvr version 1.2.3", "fault dvr copies 3",
          "fault line drop frames", "fault driver SCA0: missing", "card in", "line unplug",
          "power off"}) {
        commands_.Execute(line);
        EXPECT_TRUE(commands_.entries().back().done) << commands_.entries().back().reply;
        Draw();
        for (const unit::KeyRow& key : unit::Keys())
            EXPECT_TRUE(!key.command || commands_.Knows(key.command(context_))) << key.name;
    }
    EXPECT_GT(commands_.known().size(), 60U);
    for (const auto& [line, known] : commands_.known())
        EXPECT_TRUE(known) << line;
}

TEST_F(PanelTest, DrawsOnlyThePartsThatChanged) {
    context_.unfold_all = false;
    unit::ChangedParts changed;
    const auto find = [&] {
        Draw();
        return changed.Find(*ImGui::GetDrawData(), {1280, 800});
    };
    for (int frame = 0; frame < 3; ++frame)
        find();
    EXPECT_TRUE(find().empty());
    commands_.Execute("power off");
    int area = 0;
    for (const SDL_Rect& part : find())
        area += part.w * part.h;
    EXPECT_GT(area, 0);
    EXPECT_LT(area, 1280 * 800 / 4);
    changed.Forget();
    EXPECT_EQ(find().at(0).w, 1280);
}

TEST_F(PanelTest, TakesAnyWindowSizeAndShowsALongErrorWhole) {
    const std::string error = "power " + std::string(400, 'x');
    commands_.Execute(error);
    for (const auto& [width, height] : {std::pair(1280, 800), {500, 400}, {300, 200}, {1, 1}}) {
        for (int frame = 0; frame < 3; ++frame)
            Draw(width, height);
        const ImGuiWindow& card = *ImGui::FindWindowByName("Welcome");
        EXPECT_TRUE(width < 500 || ImRect({0, 0}, ImGui::GetIO().DisplaySize).Contains(card.Rect()))
            << width;
    }
    Draw(1280, 800);
    Draw(1280, 800);
    EXPECT_GT(context_.bar_height, 60) << "the bar does not grow";
}

TEST_F(PanelTest, LettersActOnlyWhenTheSettingsSaySo) {
    unit::PressKey(context_, SDLK_e);
    EXPECT_TRUE(unit_.external_power());
    unit::PressKey(context_, SDLK_F1);
    EXPECT_TRUE(context_.shows_glosses);
    view_.keys_act = true;
    unit::PressKey(context_, SDLK_e);
    EXPECT_FALSE(unit_.external_power());
}

TEST_F(PanelTest, CompletesCommandsWordByWord) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(commands_.Complete("car"), Words{"card"});
    EXPECT_EQ(commands_.Complete("card o"), Words{"out"});
    EXPECT_EQ(commands_.Complete("power "), (Words{"on", "off"}));
    EXPECT_EQ(commands_.Complete("nothing "), Words{});
}

TEST_F(PanelTest, KeepsTheLast500CommandsWithTheirReplies) {
    for (int i = 0; i < 501; ++i)
        commands_.Execute("power sideways");
    EXPECT_EQ(commands_.entries().size(), 500U);
    EXPECT_FALSE(commands_.entries().back().done);
    EXPECT_NE(commands_.entries().back().reply.find("on"), std::string::npos);
}

}  // namespace
}  // namespace tests
