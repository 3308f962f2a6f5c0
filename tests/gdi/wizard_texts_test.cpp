#include <set>

#include "platform/gdi/rectangle.h"
#include "tests/gdi/canvas.h"
#include "tests/model/wizard_tables.h"

namespace tests {
namespace {

using model::Screen;

FontSize FontOf(int control, std::optional<Screen> screen) {
    if (control < model::kLine1)
        return control == model::kTitle ? FontSize{10, 26, 500} : FontSize{10, 36, 600};
    if (control >= model::kUpper)
        return screen ? FontSize{22, 44, 600} : FontSize{16, 36, 600};
    if (control >= model::kSuspend)
        return {10, 24, 500};
    const std::map<std::pair<int, std::optional<Screen>>, FontSize> others = {
        {{model::kLine1, Screen::kCheckCard}, {12, 40, 500}},
        {{model::kLine1, Screen::kOffline}, {13, 40, 600}},
        {{model::kLine2, Screen::kRemoveCard}, {13, 40, 600}},
        {{model::kLine2, Screen::kSuccess}, {15, 44, 600}},
        {{model::kLine2, Screen::kFailure}, {15, 44, 600}},
        {{model::kLine2, Screen::kReopen}, {15, 48, 600}},
    };
    const auto found = others.find({control, screen});
    return found == others.end() ? FontSize{9, 26, 500} : found->second;
}

struct Row {
    std::wstring text;
    RECT place;
    UINT format;
    FontSize font;
    int lines;
};

// Every text of the wizard, with the control it stands on.
std::vector<Row> Rows() {
    std::vector<Row> rows;
    const auto add = [&](const wchar_t* text, int control, std::optional<Screen> screen) {
        if (!text || !*text)
            return;
        const auto& [left, top, right, bottom, id, own, color, visible] =
            model::Controls()[std::size_t(control)];
        const bool centred = control < model::kLine1 || control == model::kNotice || id != 0 ||
                             screen == Screen::kNoticeAfterUpdate;
        // One text is wider than its label.
        const bool wraps = control == model::kLine3 && screen == Screen::kUpdating;
        rows.push_back({text,
                        {LONG(left), LONG(top), LONG(right), LONG(bottom)},
                        UINT(DT_VCENTER | DT_WORDBREAK | (centred ? DT_CENTER : 0)),
                        FontOf(control, screen),
                        wraps ? 2 : 1});
    };
    for (int control = 0; control < model::kAllControls; ++control)
        add(model::Controls()[std::size_t(control)].text, control, {});
    for (const model::ScreenRow& screen : model::Screens()) {
        for (int line = 0; line < 4; ++line)
            add(screen.lines[std::size_t(line)], model::kLine1 + line, screen.screen);
        for (const model::Setting& setting : screen.others)
            add(setting.text, setting.control, screen.screen);
    }
    add(L"DVR : V1.23.456", model::kDvrLine, {});
    add(L"Update Percent : 100%", model::kLine2, Screen::kUpdating);
    return rows;
}

PLATFORM_TEST(WizardTexts, NoInkIsLost) {
    // Space on every side of a screen, where clipped ink would show.
    constexpr int kMargin = 100;
    for (const Row& row : Rows()) {
        SCOPED_TRACE(testing::PrintToString(row.text));
        Canvas screen(800, 480);
        screen.UseFont(row.font);
        const int height = row.lines * row.font.height;
        const int bottom = (row.place.bottom - row.place.top + height) / 2;
        EXPECT_NEAR(screen.Draw(row.text, row.place, row.format), bottom, 1);
        const RECT clipped = screen.InkBox();
        EXPECT_NE(clipped.right, 0);
        EXPECT_TRUE(EqualRect(&screen.surface->texts().at(0).box, &clipped));

        Canvas wide(800 + 2 * kMargin, 480 + 2 * kMargin);
        wide.UseFont(row.font);
        wide.Draw(row.text, gdi::Moved(row.place, kMargin, kMargin), row.format | DT_NOCLIP);
        const RECT ink = gdi::Moved(wide.InkBox(), -kMargin, -kMargin);
        EXPECT_TRUE(EqualRect(&ink, &clipped)) << "rows " << ink.top << " to " << ink.bottom
                                               << ", columns " << ink.left << " to " << ink.right;
    }
}

PLATFORM_TEST(WizardTexts, EveryCharacterHasAGlyph) {
    Canvas canvas(40, 40);
    canvas.UseFont({0, 40, 500});
    const auto picture = [&](wchar_t character) {
        canvas.FillWith(RGB(0, 0, 0));
        canvas.Draw(std::wstring(1, character), {0, 0, 40, 40}, DT_NOPREFIX);
        return canvas.AllPixels();
    };
    const auto missing = picture(wchar_t{0x10FFFD});
    std::set<wchar_t> characters;
    for (const Row& row : Rows())
        characters.insert(row.text.begin(), row.text.end());
    for (const wchar_t character : characters)
        EXPECT_NE(picture(character), missing) << std::hex << unsigned(character);
}

PLATFORM_TEST(WizardTexts, AreShapedOnce) {
    Canvas canvas(800, 480);
    const auto shaped_by_drawing = [&](const std::wstring& end) {
        const std::size_t before = gdi::ShapedLineCount();
        for (const Row& row : Rows()) {
            canvas.UseFont(row.font);
            canvas.Draw(row.text + end, row.place, row.format | DT_CALCRECT);
        }
        return gdi::ShapedLineCount() - before;
    };
    EXPECT_GT(shaped_by_drawing(L"!"), 20U);
    EXPECT_EQ(shaped_by_drawing(L"!"), 0U);
    EXPECT_GT(shaped_by_drawing(L"?"), 20U);
}

}  // namespace
}  // namespace tests
