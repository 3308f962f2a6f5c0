#include <gtest/gtest.h>

#include <vector>

#include "tests/support/platform_fixture.h"
#include "tests/window/test_window.h"

namespace tests {
namespace {

struct Tick {
    WPARAM id;
    DWORD after;
    bool operator==(const Tick&) const = default;
};

void PrintTo(const Tick& tick, std::ostream* out) {
    *out << "timer " << tick.id << " after " << tick.after << " ms";
}

// The timer messages fetched within some time from now.
std::vector<Tick> Collect(DWORD milliseconds) {
    const DWORD start = GetTickCount();
    std::vector<Tick> ticks;
    for (;;) {
        const DWORD passed = GetTickCount() - start;
        if (passed > milliseconds ||
            MsgWaitForMultipleObjects(0, NULL, FALSE, milliseconds - passed, QS_TIMER) !=
                WAIT_OBJECT_0)
            return ticks;
        MSG message{};
        if (PeekMessageW(&message, NULL, WM_TIMER, WM_TIMER, PM_REMOVE))
            ticks.push_back({message.wParam, GetTickCount() - start});
    }
}

TEST(Timer, BeatsUntilItIsKilled) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        EXPECT_EQ(SetTimer(target, 257, 100, NULL), 257U);
        EXPECT_EQ(SetTimer(target, 258, 150, NULL), 258U);
        EXPECT_EQ(Collect(320),
                  (std::vector<Tick>{{257, 100}, {258, 150}, {257, 200}, {257, 300}, {258, 300}}));
        EXPECT_TRUE(KillTimer(target, 257));
        EXPECT_FALSE(KillTimer(target, 257));
        EXPECT_EQ(Collect(150), (std::vector<Tick>{{258, 130}}));
    });
}

TEST(Timer, ArmingAnewRestartsThePeriodAndTakesBackAMessageThatWaits) {
    struct Case {
        const char* name;
        DWORD armed_anew_after;
        UINT period;
        std::vector<Tick> expected;  // within 250 ms from then
    };
    const Case cases[] = {
        {"before it was due", 60, 100, {{1, 100}, {1, 200}}},
        {"while its message waits", 130, 100, {{1, 100}, {1, 200}}},
        {"with another period", 130, 240, {{1, 240}}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        Platform platform;
        platform.Run([&] {
            const TestWindow target;
            SetTimer(target, 1, 100, NULL);
            Sleep(each.armed_anew_after);
            EXPECT_EQ(SetTimer(target, 1, each.period, NULL), 1U);
            EXPECT_EQ(Collect(250), each.expected);
        });
    }
}

TEST(Timer, MissedPeriodsAreOneMessageAndTheBeatStays) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        SetTimer(target, 1, 100, NULL);
        Sleep(370);
        EXPECT_EQ(Collect(100), (std::vector<Tick>{{1, 0}, {1, 30}}));
    });
}

TEST(Timer, KillingForgetsAMessageThatWaits) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        SetTimer(target, 1, 100, NULL);
        Sleep(150);
        KillTimer(target, 1);
        EXPECT_EQ(Collect(300), std::vector<Tick>{});
    });
}

TEST(Timer, AnotherThreadArmsAndKillsIt) {
    Platform platform;
    platform.Run([] {
        const TestWindow target;
        ApiThread peer([&] {
            SetTimer(target, 260, 100, NULL);
            SetTimer(target, 261, 100, NULL);
            KillTimer(target, 261);
        });
        peer.Join();
        EXPECT_EQ(Collect(150), (std::vector<Tick>{{260, 100}}));

        // Also while the window's thread waits for a message.
        KillTimer(target, 260);
        const ApiThread later([&] {
            Sleep(40);
            SetTimer(target, 262, 100, NULL);
        });
        const DWORD start = GetTickCount();
        MSG message{};
        EXPECT_TRUE(GetMessageW(&message, NULL, 0, 0));
        EXPECT_EQ(message.wParam, 262U);
        EXPECT_EQ(GetTickCount() - start, 140U);
    });
}

DWORD g_called_at = 0;

void CALLBACK NoteCall(HWND, UINT message, UINT_PTR, DWORD) {
    EXPECT_EQ(message, WM_TIMER);
    g_called_at = GetTickCount();
}

TEST(Timer, OfAThreadCallsItsProcedure) {
    Platform platform;
    platform.Run([] {
        const DWORD start = GetTickCount();
        const UINT_PTR first = SetTimer(NULL, 5, 100, NoteCall);
        const UINT_PTR second = SetTimer(NULL, 5, 100, NoteCall);
        EXPECT_NE(first, 0U);
        EXPECT_NE(first, second);
        EXPECT_TRUE(KillTimer(NULL, second));
        MSG message{};
        GetMessageW(&message, NULL, 0, 0);
        DispatchMessageW(&message);
        EXPECT_EQ(g_called_at - start, 100U);

        // A message whose timer is gone calls nothing.
        g_called_at = 0;
        GetMessageW(&message, NULL, 0, 0);
        EXPECT_TRUE(KillTimer(NULL, first));
        DispatchMessageW(&message);
        EXPECT_EQ(g_called_at, 0U);
    });
}

TEST(Timer, NeedsItsWindow) {
    Platform platform;
    platform.Run([] {
        HWND stale = NULL;
        {
            const TestWindow target;
            stale = target;
            SetTimer(stale, 1, 10, NULL);
        }
        EXPECT_EQ(Collect(50), std::vector<Tick>{});
        EXPECT_EQ(SetTimer(stale, 1, 10, NULL), 0U);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
        EXPECT_FALSE(KillTimer(stale, 1));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    });
}

}  // namespace
}  // namespace tests
