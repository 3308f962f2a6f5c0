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

}  // namespace
}  // namespace tests
