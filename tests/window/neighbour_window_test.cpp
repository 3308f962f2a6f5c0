#include "tests/window/test_window.h"

namespace tests {
namespace {

constexpr wchar_t kClass[] = L"Elsewhere";

HWND WithOwned(HWND window) {
    return reinterpret_cast<HWND>(reinterpret_cast<UINT_PTR>(window) | 1);
}

TEST(NeighbourWindow, IsFoundBroughtForwardAndGone) {
    Platform platform;
    platform.Run([&] {
        Neighbour& neighbour = platform.board.neighbour;
        neighbour.window_class = kClass;
        neighbour.title = L"there";
        ExpectFails(ERROR_CANNOT_FIND_WND_CLASS, [] { return FindWindowW(kClass, NULL); });

        neighbour.window = 0x51;
        const HWND found = FindWindowW(kClass, NULL);
        ASSERT_NE(found, HWND{NULL});
        EXPECT_EQ(FindWindowW(kClass, L"there"), found);
        EXPECT_EQ(FindWindowW(NULL, L"there"), found);
        EXPECT_EQ(FindWindowW(kClass, L"not there"), HWND{NULL});
        EXPECT_TRUE(IsWindow(found));
        EXPECT_TRUE(SetForegroundWindow(found));
        EXPECT_EQ(neighbour.brought_forward, 0);
        EXPECT_TRUE(SetForegroundWindow(WithOwned(found)));
        EXPECT_EQ(neighbour.brought_forward, 1);
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE, [&] { return PostMessageW(found, 0, 0, 0); });

        // Another window of that name is another handle, and the old one stays stale.
        neighbour.window = 0x52;
        EXPECT_FALSE(IsWindow(found));
        const HWND next = FindWindowW(kClass, NULL);
        EXPECT_NE(next, found);
        neighbour.window = 0x51;
        ExpectFails(ERROR_INVALID_WINDOW_HANDLE,
                    [&] { return SetForegroundWindow(WithOwned(next)); });
        EXPECT_FALSE(IsWindow(found));
        EXPECT_FALSE(IsWindow(next));
    });
}

// What is here is found without asking.
TEST(NeighbourWindow, ComesAfterTheWindowsHere) {
    Platform platform;
    platform.Run([&] {
        platform.board.neighbour.window_class = TestWindow::kClass;
        platform.board.neighbour.window = 0x51;
        {
            const TestWindow here;
            EXPECT_EQ(FindWindowW(TestWindow::kClass, NULL), here.handle());
            EXPECT_TRUE(IsWindow(here));
            EXPECT_TRUE(SetForegroundWindow(here));
            EXPECT_EQ(platform.board.neighbour.questions, 0);
        }
        EXPECT_NE(FindWindowW(TestWindow::kClass, NULL), HWND{NULL});
    });
}

// The other direction, on the hardware's thread: what a neighbour may ask about a window here.
TEST(NeighbourWindow, IsAnsweredFor) {
    Platform platform;
    std::optional<WindowThread> below;
    std::optional<WindowThread> above;
    platform.Run([&] {
        below.emplace(TestWindow::Options{.title = L"below"});
        above.emplace(TestWindow::Options{.title = L"above"});
        Sleep(10);
    });
    const auto number = window::FindOwnWindow(L"testwindow", L"BELOW");
    ASSERT_NE(number, 0U);
    EXPECT_EQ(window::FindOwnWindow(TestWindow::kClass, {}), window::FindOwnWindow({}, L"above"));
    EXPECT_EQ(window::FindOwnWindow(kClass, {}), 0U);
    EXPECT_TRUE(window::HasWindow(number));
    EXPECT_TRUE(window::BringOwnForward(number, true));
    EXPECT_EQ(window::TopLevelWindows().front().title, L"below");
    platform.Run([&] {
        below.reset();
        above.reset();
    });
    EXPECT_FALSE(window::HasWindow(number));
    EXPECT_FALSE(window::BringOwnForward(number, true));
    EXPECT_EQ(platform.board.neighbour.questions, 0);
}

}  // namespace
}  // namespace tests
