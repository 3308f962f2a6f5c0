#include <gtest/gtest.h>

#include <cstdio>
#include <ctime>
#include <cwchar>
#include <set>
#include <span>

#include "tests/gdi/canvas.h"

using namespace tests;

namespace {

constexpr UINT kCentred = DT_CENTER | DT_VCENTER | DT_WORDBREAK;
constexpr UINT kLeft = DT_VCENTER | DT_WORDBREAK;

constexpr RECT kTitle{50, 0, 750, 50};
constexpr RECT kWarning{0, 45, 800, 95};
constexpr RECT kTool{0, 85, 400, 135};
constexpr RECT kDvr{400, 85, 800, 135};
constexpr RECT kNotice{50, 120, 750, 170};
constexpr RECT kLine1{50, 150, 750, 200};
constexpr RECT kLine2{50, 210, 750, 260};
constexpr RECT kLine3{50, 270, 750, 320};
constexpr RECT kLine4{50, 330, 750, 380};
constexpr RECT kSuspend{215, 405, 383, 471};
constexpr RECT kNext{415, 405, 583, 471};
constexpr RECT kUpdate{615, 405, 783, 471};
constexpr RECT kUpper{0, 0, 800, 380};
constexpr RECT kLower{0, 100, 800, 480};

constexpr FontSize kPlain{9, 26, 500};
constexpr FontSize kHeading{10, 36, 600};
constexpr FontSize kButton{10, 24, 500};

struct Row {
    const wchar_t* text;
    RECT place;
    UINT format;
    FontSize font;
    int lines;
};

// One row a line, whatever its length.
// clang-format off
const Row kRows[] = {
    {L"<< DVR Firmware Update Tool >>", kTitle, kCentred, {10, 26, 500}, 1},
    {L"ファームウェアをアップデートしている間は、外部電源を抜かないで下さい。", kWarning, kCentred, kHeading, 1},
    {L"Update Tool : V0.7.00", kTool, kCentred, kHeading, 1},
    {L"DVR : 読み込み中", kDvr, kCentred, kHeading, 1},
    {L"DVR : V1.23.456", kDvr, kCentred, kHeading, 1},
    {L"DVR :", kDvr, kCentred, kHeading, 1},
    {L"進入休眠", kSuspend, kCentred, kButton, 1},
    {L"Power On", kNext, kCentred, kButton, 1},
    {L"Next", kNext, kCentred, kButton, 1},
    {L"Update", kUpdate, kCentred, kButton, 1},
    {L"OK", kUpdate, kCentred, kButton, 1},
    {L"1. 本体に外部電源を接続して下さい。", kLine1, kLeft, kPlain, 1},
    {L"2. DVR用SDカード挿入口にSDカードが入っていないことを確認して下さい。", kLine2, kLeft, kPlain, 1},
    {L"\"Power On\" ボタンを押下して下さい。", kLine4, kLeft, kPlain, 1},
    {L" 異常が発生した為、アップデート出来ません。", kLine2, kLeft, kPlain, 1},
    {L" 画面右上の終了ボタンを押下して下さい。", kLine3, kLeft, kPlain, 1},
    {L"3.“Next” ボタンを押下して下さい。", kLine1, kLeft, {12, 40, 500}, 1},
    {L" DVR用SDカード挿入口にSDカードが入っている場合、", kLine2, kLeft, kPlain, 1},
    {L" Nextボタンは表示されません。", kLine3, kLeft, kPlain, 1},
    {L"4. \"gp_card_upgrade.bin\" をSDカードに入れて下さい。", kLine1, kLeft, kPlain, 1},
    {L"5. DVR用SDカード挿入口にSDカードを入れて下さい。", kLine2, kLeft, kPlain, 1},
    {L"      \"Update\" ボタンを押下して下さい。", kLine4, kLeft, kPlain, 1},
    {L"ファームウェアをアップデートしている間は、本体の電源を切らないで下さい。", kLine1, kLeft, kPlain, 1},
    {L"Update Percent : 100%", kLine2, kLeft, kPlain, 1},
    {L"ファームウェアをアップデートしている間は、本体のRESETボタンを押下しないで下さい。", kLine3, kLeft, kPlain, 2},
    {L"ファームウェアをアップデートしている間は、SDカードを抜かないで下さい。", kLine4, kLeft, kPlain, 1},
    {L"DVR用SDカードに “gp_cardvr_upgrade.bin” が入っていません。", kNotice, kCentred, kPlain, 1},
    {L"6. しばらくお待ち下さい。", kLine2, kLeft, kPlain, 1},
    {L"7. DVR用SDカード挿入口からSDカードを抜いて下さい。", kLine2, kLeft, {13, 40, 600}, 1},
    {L"      \"Next\" ボタンを押下して下さい。", kLine4, kLeft, kPlain, 1},
    {L"ファームウェアのアップデート終了です。", kLine2, kLeft, {15, 44, 600}, 1},
    {L"ファームウェアのアップデートに失敗しました。", kLine2, kLeft, {15, 44, 600}, 1},
    {L"画面右上の終了ボタンを押下して下さい。", kLine3, kLeft, kPlain, 1},
    {L"Please make sure DVR Firmware is correct.", kLine2, kLeft, {15, 48, 600}, 1},
    {L"To continue to upgrade, please re-open the program.", kLine4, kLeft, kPlain, 1},
    {L"本体に外部電源を接続して下さい。", kLine1, kLeft, {13, 40, 600}, 1},
    {L"DVR用SDカード挿入口にSDカードが入っている場合、", kUpper, kLeft, {16, 36, 600}, 1},
    {L"SDカードを抜いて下さい。", kLower, kLeft, {16, 36, 600}, 1},
    {L"DVR用SDカード挿入口から", kUpper, kCentred, {22, 44, 600}, 1},
    {L"SDカードを抜いて下さい。", kLower, kCentred, {22, 44, 600}, 1},
};
// clang-format on

class WizardTexts : public testing::Test {
  protected:
    Platform platform;
};

TEST_F(WizardTexts, NoInkIsLost) {
    // Room on every side of a screen, where ink that does not fit would show.
    constexpr int kMargin = 100;
    for (const Row& row : kRows) {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.text) << " " << row.font.width
                                        << "x" << row.font.height);
        Canvas screen(800, 480);
        const FontOn font(screen.dc, row.font);
        const int height = Draw(screen.dc, row.text, row.place, row.format);
        EXPECT_EQ(height, row.lines * row.font.height);
        EXPECT_NE(screen.InkBox().right, 0);

        Canvas wide(800 + 2 * kMargin, 480 + 2 * kMargin);
        const FontOn wide_font(wide.dc, row.font);
        RECT place = row.place;
        OffsetRect(&place, kMargin, kMargin);
        Draw(wide.dc, row.text, place, row.format | DT_NOCLIP);
        RECT ink = wide.InkBox();
        OffsetRect(&ink, -kMargin, -kMargin);
        const RECT clipped = screen.InkBox();
        EXPECT_TRUE(EqualRect(&ink, &clipped)) << "rows " << ink.top << " to " << ink.bottom
                                               << ", columns " << ink.left << " to " << ink.right;
        EXPECT_TRUE(EqualRect(&screen.surface->texts().at(0).box, &clipped));
    }
}

TEST_F(WizardTexts, EveryCharacterHasAGlyph) {
    Canvas canvas(40, 40);
    const FontOn font(canvas.dc, {0, 40, 500});
    const auto picture = [&](wchar_t character) {
        canvas.FillWith(RGB(0, 0, 0));
        Draw(canvas.dc, std::wstring(1, character), {0, 0, 40, 40}, DT_NOPREFIX);
        const auto pixels = canvas.surface->pixels();
        return std::vector<std::uint32_t>(pixels.begin(), pixels.end());
    };
    const auto missing = picture(wchar_t{0x10FFFD});
    std::set<wchar_t> characters;
    for (const Row& row : kRows)
        characters.insert(row.text, row.text + std::wcslen(row.text));
    for (const wchar_t character : characters)
        EXPECT_NE(picture(character), missing) << std::hex << unsigned(character);
}

TEST_F(WizardTexts, ARepaintOfTheScreenIsQuick) {
    Canvas window(800, 480);
    const HDC memory = CreateCompatibleDC(window.dc);
    const HBITMAP bitmap = CreateCompatibleBitmap(window.dc, 800, 480);
    const HGDIOBJ displaced = SelectObject(memory, bitmap);
    const auto paint = [&] {
        const RECT whole{0, 0, 800, 480};
        const HBRUSH brush = CreateSolidBrush(0x001000);
        FillRect(memory, &whole, brush);
        DeleteObject(brush);
        for (const Row& row : std::span(kRows).first(16)) {
            const FontOn font(memory, row.font);
            Draw(memory, row.text, row.place, row.format);
        }
        BitBlt(window.dc, 0, 0, 800, 480, memory, 0, 0, SRCCOPY);
    };
    // Processor time: what else the machine does is not ours to measure.
    const auto measure = [&](int times) {
        const std::clock_t start = std::clock();
        for (int i = 0; i < times; ++i)
            paint();
        return double(std::clock() - start) * 1000 / CLOCKS_PER_SEC / times;
    };
    const double first = measure(1);
    const double again = measure(100);
    std::printf("first painting %.2f ms, again %.2f ms\n", first, again);
    // Far above what it takes, sanitizers included; far below what shaping every text would take.
    EXPECT_LT(again, 30);
    SelectObject(memory, displaced);
    DeleteObject(bitmap);
    DeleteDC(memory);
}

}  // namespace
