#include "unit/workbench/panel.h"

#include <gtest/gtest.h>

#include "platform/resource/module.h"
#include "res/program_resources.h"
#include "unit/commands/unit_commands.h"

namespace tests {
namespace {

// The panel drawn for nobody, in simulated time.
class PanelTest : public testing::Test {
  protected:
    PanelTest() {
        ImGui::CreateContext();
        ImGui::GetIO().IniFilename = nullptr;
        ImGui::GetIO().DisplaySize = {1280, 800};
        std::string problem;
        EXPECT_TRUE(unit::LoadFonts(1, 1, desk_.fonts, problem)) << problem;
        unsigned char* pixels = nullptr;
        int width = 0;
        int height = 0;
        ImGui::GetIO().Fonts->GetTexDataAsAlpha8(&pixels, &width, &height);
        desk_.unfolded = true;
    }
    ~PanelTest() override {
        ImGui::DestroyContext();
        unit_.Close(std::chrono::seconds(10));
    }

    void Draw() {
        ImGui::NewFrame();
        panel_.Draw(desk_, unit::PlaceAll(1280, 800, 1, 262, unit::Scaling::kWhole));
        ImGui::Render();
    }

    unit::DebugLog log_{[](std::chrono::microseconds, const std::string&) {}};
    unit::VirtualUnit unit_{
        {}, {[] { return 0; }, res::ProgramResources()}, log_, [](const std::string&) {}};
    unit::Operator operator_{unit_, "/"};
    unit::PictureMeter meter_;
    unit::History history_{unit_.events()};
    unit::CommandRunner commands_{unit::UnitCommands(), operator_};
    unit::Desk desk_{unit_, commands_, history_, meter_};
    unit::Panel panel_;
};

TEST_F(PanelTest, EveryButtonStandsForACommandThatExists) {
    Draw();
    // Some buttons stand for another command in another state.
    for (const char* const line :
         {"fault dvr silent on", "fault dvr fail-at 57", "fault dvr jump-back 57 20",
          "fault dvr version 1.2.3", "fault dvr copies 3", "fault line drop frames",
          "fault driver SCA0: missing", "card in", "power off"}) {
        commands_.Follow(line);
        EXPECT_TRUE(commands_.entries().back().done) << commands_.entries().back().reply;
        Draw();
    }
    for (int i = 0; i < 600; ++i)
        commands_.Follow("nonsense");
    EXPECT_EQ(commands_.entries().size(), 500U);
    EXPECT_GT(commands_.asked().size(), 60U);
    for (const auto& [line, known] : commands_.asked())
        EXPECT_TRUE(known) << line;
}

TEST_F(PanelTest, CompletesCommandsWordByWord) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(commands_.Complete("car"), Words{"card"});
    EXPECT_EQ(commands_.Complete("card o"), Words{"out"});
    EXPECT_EQ(commands_.Complete("power "), (Words{"on", "off"}));
    EXPECT_EQ(commands_.Complete("nothing "), Words{});
    commands_.Follow("power sideways");
    EXPECT_FALSE(commands_.entries().back().done);
    EXPECT_NE(commands_.entries().back().reply.find("on"), std::string::npos);
}

}  // namespace
}  // namespace tests
