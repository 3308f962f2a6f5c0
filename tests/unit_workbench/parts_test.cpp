#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <tuple>
#include <utility>

#include "platform/kernel/text.h"
#include "tests/support/platform_fixture.h"
#include "unit/workbench/dock.h"
#include "unit/workbench/gloss.h"
#include "unit/workbench/history.h"
#include "unit/workbench/layout.h"
#include "unit/workbench/operator_hint.h"
#include "unit/workbench/readable.h"
#include "unit/workbench/redraw.h"
#include "unit/workbench/view_settings.h"

// The parts of the window that need no window.

namespace tests {
namespace {

using unit::Area;
using unit::LineBytes;
using unit::Scaling;
using enum unit::Direction;

TEST(History, SortsEventsForThePanel) {
    Platform platform;
    unit::EventHub hub;
    unit::History history(hub);
    EXPECT_FALSE(history.Update());
    hub.Publish(unit::LineLogged{"first"});
    // A report of 57 percent in two chunks, and one with a wrong checksum.
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00}});
    hub.Publish(LineBytes{kToUnit, {0x01, 0x39, 0x01, 0xE7}});
    hub.Publish(LineBytes{kToUnit, {0xA5, 0x5A, 0x80, 0x00, 0x2E, 0x00, 0x01, 0x3A, 0x00, 0x00}});
    hub.Publish(unit::CardMoved{true, "/somewhere"});
    hub.Publish(unit::PowerRequested{L"_All_APP_PowerSuspend_Request_"});
    hub.Publish(unit::BroadcastPosted{L"_PowerSuspend_Acknowledge_", 0xC000, 0, 0});
    EXPECT_TRUE(history.log().entries().empty()) << "only Update changes what the panel shows";
    EXPECT_TRUE(history.Update());
    EXPECT_EQ(history.log().entries().at(0).text, "first");
    EXPECT_TRUE(history.traffic().entries().at(0).checksum_good());
    EXPECT_FALSE(history.traffic().entries().at(1).checksum_good());
    ASSERT_EQ(history.percents().count(), 1U);
    EXPECT_EQ(history.percents().entries()[0].percent, 57);
    EXPECT_EQ(history.card_folder(), "/somewhere");
    EXPECT_EQ(history.power_messages().entries().at(0).text, "suspend request");
    EXPECT_EQ(history.power_messages().entries().at(1).text, "suspend acknowledged");
    // Between two calls of Update it keeps 50,000 events.
    for (int i = 0; i < 60'000; ++i)
        hub.Publish(unit::LineLogged{"more"});
    history.Update();
    EXPECT_EQ(history.log().count(), 50'001U);
}

TEST(History, KeepsTheLatestEntriesAndCountsAll) {
    unit::Latest<int, 3> latest;
    for (int value = 0; value < 5; ++value)
        latest.Add(value);
    EXPECT_EQ(latest.entries(), (std::deque<int>{2, 3, 4}));
    EXPECT_EQ(latest.dropped(), 2U);
    latest.Clear();
    latest.Add(9);
    EXPECT_EQ(latest.dropped(), 5U);
    EXPECT_EQ(latest.count(), 6U);
}

TEST(UpdatePlot, BeginsWithTheLatestUpdate) {
    const std::pair<std::vector<int>, std::size_t> cases[] = {
        {{40}, 0},
        {{0, 1, 50, 100, 0, 1, 20}, 4},
        {{1, 9, 1, 9, 1, 1}, 4},
        // A DVR that jumps back is still in the same update.
        {{0, 50, 2, 30}, 0},
    };
    for (const auto& [percents, first] : cases) {
        std::deque<unit::History::Percent> reports;
        for (const int percent : percents)
            reports.push_back({{}, percent});
        EXPECT_EQ(unit::LatestUpdate(reports), first) << testing::PrintToString(percents);
    }
}

TEST(Layout, ScalesTheScreenByWholeOrSmoothFactors) {
    const std::tuple<Area, Scaling, Area> cases[] = {
        {{0, 0, 800, 480}, Scaling::kWhole, {0, 0, 800, 480}},
        {{10, 20, 900, 600}, Scaling::kWhole, {60, 80, 800, 480}},
        {{10, 20, 1000, 600}, Scaling::kSmooth, {10, 20, 1000, 600}},
        {{0, 0, 1599, 2000}, Scaling::kWhole, {399, 760, 800, 480}},
        {{0, 0, 1600, 2000}, Scaling::kWhole, {0, 520, 1600, 960}},
        {{0, 0, 1920, 1080}, Scaling::kSmooth, {60, 0, 1800, 1080}},
        // Less space than the screen needs: smooth either way.
        {{0, 0, 400, 480}, Scaling::kWhole, {0, 120, 400, 240}},
        {{0, 0, 0, 0}, Scaling::kSmooth, {0, 0, 0, 0}},
    };
    for (const auto& [space, scaling, expected] : cases)
        EXPECT_EQ(unit::PlaceScreen(space, scaling), expected)
            << space.width << 'x' << space.height;
}

TEST(Layout, FillsAnyWindowWithoutOverlap) {
    for (const auto& [width, height] : {std::pair(1280.0F, 800.0F),
                                        {1920.0F, 1080.0F},
                                        {800.0F, 360.0F},
                                        {799.0F, 600.0F},
                                        {500.0F, 400.0F},
                                        {300.0F, 200.0F},
                                        {1.0F, 1.0F},
                                        {0.0F, 0.0F}})
        for (const float wish : {0.0F, 262.0F, 5000.0F}) {
            SCOPED_TRACE(testing::Message() << width << ' ' << height << ' ' << wish);
            const unit::Layout layout =
                unit::PlaceAll(width, height, 1, wish, Scaling::kWhole, wish);
            const Area none{0, 0, 1, 1};
            for (const Area& area :
                 {layout.screen, layout.panel, layout.bar, layout.dock.value_or(none)}) {
                EXPECT_GE(area.width, 1);
                EXPECT_GE(area.height, 1);
            }
            EXPECT_EQ(layout.dock.has_value(), width >= 800);
            if (height < 300)
                continue;
            EXPECT_EQ(layout.panel.x + layout.panel.width, width);
            EXPECT_EQ(layout.bar.y + layout.bar.height, height);
            EXPECT_LE(layout.panel.y + layout.panel.height, layout.bar.y);
            if (layout.dock) {
                EXPECT_EQ(layout.panel.x, layout.dock->width);
                EXPECT_EQ(layout.dock->y + layout.dock->height, layout.bar.y);
                EXPECT_LE(layout.screen.y + layout.screen.height, layout.dock->y);
                EXPECT_LE(layout.screen.x + layout.screen.width, layout.panel.x);
            } else {
                EXPECT_LE(layout.screen.y + layout.screen.height, layout.panel.y);
                EXPECT_LE(layout.screen.height, height * 0.55F);
            }
        }
}

TEST(ViewSettings, SurviveAFileAndIgnoreDamage) {
    const unit::ViewSettings settings{900,
                                      700,
                                      300,
                                      Scaling::kWhole,
                                      unit::Theme::kLight,
                                      true,
                                      true,
                                      {{"SD card", false}, {"Faults", true}}};
    const auto folder = std::filesystem::path(testing::TempDir()) / std::to_string(getpid());
    const auto file = folder / "tolvane" / "workbench";
    EXPECT_EQ(unit::LoadSettings(file), unit::ViewSettings()) << "no file yet";
    unit::SaveSettings(file, settings);
    EXPECT_EQ(unit::LoadSettings(file), settings);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
    EXPECT_EQ(unit::LoadSettings(folder), unit::ViewSettings()) << "a folder";
    std::filesystem::remove_all(folder);
    for (const char* const damaged :
         {"window 0 700", "window 900", "window 999999999999 5", "dock -3", "dock x", "scaling",
          "theme green", "keys maybe", "open", "\xff\xfe binary", "windows 5 5"})
        EXPECT_EQ(unit::ReadSettings(damaged), unit::ViewSettings()) << damaged;
}

TEST(Gloss, ExistsForEveryTextThatTheProgramDraws) {
    std::set<std::wstring> drawn;
    for (const char* const file : {"/wizard/MainFrm.Screen.cpp", "/ui/CNotify.cpp"}) {
        std::ifstream input(SOURCES + std::string(file));
        const std::string text{std::istreambuf_iterator<char>(input), {}};
        const std::regex literal(R"re(L"((?:[^"\\]|\\.)*)")re");
        for (std::sregex_iterator match(text.begin(), text.end(), literal), end; match != end;
             ++match) {
            const std::string plain =
                std::regex_replace((*match)[1].str(), std::regex(R"(\\")"), "\"");
            if (std::ranges::any_of(plain, [](char c) { return c < 0; }))
                drawn.insert(platform::kernel::FromUtf8(plain));
        }
    }
    EXPECT_GT(drawn.size(), 20U);
    for (const std::wstring& text : drawn)
        EXPECT_NE(unit::GlossOf(text), "") << platform::kernel::ToUtf8(text);
    for (const unit::Gloss& gloss : unit::Glosses())
        EXPECT_TRUE(drawn.contains(std::wstring(gloss.text))) << gloss.english;
    EXPECT_EQ(unit::GlossOf(L"Next"), "");
}

TEST(OperatorHint, FollowsTheScreenAndTheDvr) {
    using State = dvrsim::Dvr::State;
    const std::wstring upper = L"DVR用SDカード挿入口にSDカードが入っている場合、";
    const std::wstring insert = L"5. DVR用SDカード挿入口にSDカードを入れて下さい。";
    const std::wstring remove = L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。";
    const std::wstring check = L" Nextボタンは表示されません。";
    const struct {
        unit::HintState state;
        const char* hint;  // a part of it
    } cases[] = {
        {{}, "program is starting"},
        {{.texts = {L"Next"}, .suspended = true}, "\"Wake\""},
        {{{L"\"Power On\" ボタンを押下して下さい。"}, false, State::kNormal}, "Click \"Power On\""},
        {{{L"\"Power On\" ボタンを押下して下さい。"}, false, State::kNormal, true},
         "Remove the SD card"},
        {{{upper, L"SDカードを抜いて下さい。", L"OK"}, false, State::kNormal}, "Click \"OK\""},
        {{{upper, L"OK"}, false, State::kNormal, true}, "Remove the SD card first"},
        {{{L"DVR用SDカード挿入口から", L"OK"}, false, State::kUpdateFinished, true},
         "Click \"OK\""},
        {{{check}, false, State::kBooting}, "The DVR starts"},
        {{{check, L"Next"}, false, State::kNormal}, "Click \"Next\""},
        {{{check}, false, State::kNormal, true}, "Remove the SD card"},
        {{{insert}, false, State::kBooting}, "wait until its state is \"normal\""},
        {{{insert}, false, State::kNormal}, "Insert the SD card"},
        {{{insert}, false, State::kNormal, true}, "Wait for \"Update\""},
        {{{insert, L"Update"}, false, State::kNormal, true}, "Click \"Update\""},
        {{{insert}, false, State::kUpdating, true}, "updates itself"},
        {{{insert, L"Update"}}, "Click \"Update\""},
        {{{L"Update Percent : 40%"}, false, State::kUpdating, true}, "updates itself"},
        {{{L"Update Percent : 40%"}, false, State::kUpdating, true, true}, "hang"},
        {{{L"Update Percent : 40%"}, false, State::kUpdateFailed}, "has failed"},
        {{{L"6. しばらくお待ち下さい。"}, false, State::kUpdateFinished}, "A notice appears"},
        {{{remove, L"Next"}, false, State::kUpdateFinished, true}, "Remove the SD card"},
        {{{remove, L"Next"}, false, State::kUpdateFinished}, "Click \"Next\""},
        {{{remove}, false, State::kBooting}, "Wait for the result"},
        {{{L"ファームウェアのアップデート終了です。"}}, "Success"},
        {{{L"ファームウェアのアップデートに失敗しました。"}}, "Failure"},
        {{{L"本体に外部電源を接続して下さい。"}}, "External power is off"},
    };
    for (const auto& [state, hint] : cases)
        EXPECT_NE(unit::HintFor(state).find(hint), std::string::npos)
            << hint << ": " << unit::HintFor(state);
}

TEST(Readable, FilterWantsAllWordsAndNoneWithAMinus) {
    for (const char* const matches :
         {"", "  ", "reset", "RESET", "dvr reset", "-suspend dvr", "-", "Reset_DVR()"})
        EXPECT_TRUE(unit::Matches("CMainFrame::Reset_DVR()", matches)) << matches;
    for (const char* const fails : {"dvr suspend", "-reset", "reset -dvr"})
        EXPECT_FALSE(unit::Matches("CMainFrame::Reset_DVR()", fails)) << fails;
}

TEST(Readable, NamesRequestsAndBroadcastsInWords) {
    EXPECT_EQ(unit::ReadablePowerName("_Maker_Tool_PowerOFF_Acknowledge_"),
              "power off acknowledged");
    EXPECT_EQ(unit::ReadablePowerName("Other"), "Other");
    EXPECT_EQ(unit::ReadableBroadcast({L"_Maker_All_APP_PowerStatusChange_", 0xC001, 0, 2}),
              "power status: external power off, battery flag 2");
    EXPECT_EQ(unit::ReadableBroadcast({L"", 1030, 7, 8}), "message 1030 (7, 8)");
    EXPECT_EQ(unit::ReadableTime(std::chrono::microseconds(20'132'900)), "20.133");
}

TEST(FilteredList, KeepsUpWithAListThatGrowsAndDrops) {
    const std::vector<std::string> all = {"a1", "b2", "a3", "b4", "a5"};
    unit::FilteredList list;
    const auto update = [&](const char* filter, std::uint64_t dropped, std::uint64_t count) {
        list.Update(filter, dropped, count,
                    [&](std::size_t index) { return unit::Matches(all[index + dropped], filter); });
        return list.numbers();
    };
    using Numbers = std::vector<std::uint64_t>;
    EXPECT_EQ(update("a", 0, 3), (Numbers{0, 2}));
    EXPECT_EQ(update("a", 0, 5), (Numbers{0, 2, 4}));
    EXPECT_EQ(update("a", 1, 5), (Numbers{2, 4}));
    EXPECT_EQ(update("b", 1, 5), (Numbers{1, 3}));
    EXPECT_EQ(update("", 5, 5), Numbers{});
}

TEST(RedrawSchedule, DrawsOnlyWhatChanged) {
    unit::RedrawSchedule redraw;
    bool news = false;
    const auto next = [&](double now, bool screen_outdated = false) {
        const auto [picture, panel, all] =
            redraw.Next(now, screen_outdated, [&] { return std::exchange(news, false); });
        return std::string(all ? "all " : "") + (panel ? "panel " : "") +
               (picture ? "picture" : "");
    };
    EXPECT_EQ(next(1), "all panel picture") << "the first one";
    EXPECT_EQ(next(1.1), "");
    EXPECT_EQ(next(1.11, true), "picture");
    EXPECT_EQ(next(1.12, true), "picture");
    EXPECT_EQ(next(1.125, true), "") << "at most 60 per second";
    news = true;
    EXPECT_EQ(next(1.13), "") << "at most 20 looks for news per second";
    EXPECT_EQ(next(1.16), "panel picture");
    EXPECT_EQ(next(1.6), "");
    EXPECT_EQ(next(1.71), "panel picture") << "state without events";
    redraw.Repaint();
    EXPECT_EQ(next(1.75), "all panel picture");
    redraw.LetPanelSettle();
    for (const double now : {1.77, 1.79, 1.81})
        EXPECT_EQ(next(now), "panel picture") << now;
    EXPECT_EQ(next(1.83), "");
    EXPECT_EQ(redraw.Idle(1.83, false), 0.25);
    EXPECT_EQ(redraw.Idle(1.83, true), 0);
}

TEST(PictureMeter, CountsOnlyWhileSomethingMoves) {
    unit::PictureMeter meter;
    double now = 100;
    meter.Count(now, true);
    for (int picture = 0; picture < 120; ++picture)
        meter.Count(now += 1.0 / 60, true);
    EXPECT_NEAR(meter.rate(), 60, 0.1);
    // Nothing moves for an hour, which is no gap.
    meter.Count(now += 1.0 / 60, false);
    meter.Count(now += 3600, true);
    meter.Count(now += 0.04, true);
    EXPECT_EQ(meter.Summary(), "122 pictures in 2.1 s (59.3 per second, longest gap 40 ms)");
}

}  // namespace
}  // namespace tests
