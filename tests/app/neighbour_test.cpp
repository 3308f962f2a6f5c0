#include <gtest/gtest.h>

#include "platform/window/screen.h"
#include "tests/bench/wizard_bench.h"

namespace tests {
namespace {

using platform::NamedKind;

constexpr wchar_t kFirstName[] = L"Tolvane";

// The first copy as another process: what it has, and when that changes.
struct FirstCopy {
    std::chrono::milliseconds window_after;  // 0 at once, -1 never
    std::chrono::milliseconds ends_after;    // -1 never
    std::chrono::milliseconds answer_after;  // of the second copy
    bool runs;
};

TEST(SecondProcess, LetsTheFirstOneGoBeforeIt) {
    constexpr FirstCopy kCopies[] = {
        {0ms, -1ms, 0ms, false},        // the window is there
        {1050ms, -1ms, 1100ms, false},  // comes late
        {2350ms, -1ms, 2400ms, false},  // just in time
        {-1ms, -1ms, 2500ms, true},     // never comes
        {-1ms, 1050ms, 1100ms, true},   // the first copy ends
    };
    for (const FirstCopy& row : kCopies) {
        WizardBench bench;
        Neighbour& first = bench.platform.board.neighbour;
        const auto show = [&] { first.window = 0x51; };
        first.objects[kFirstName] = NamedKind::kMutex;
        first.window_class = kFirstName;
        if (row.window_after == 0ms)
            show();
        else if (row.window_after > 0ms)
            bench.After(row.window_after, show);
        if (row.ends_after >= 0ms)
            bench.After(row.ends_after, [&] { first = {}; });

        bench.Start();  // takes 20 ms itself
        bench.RunFor(row.answer_after - 40ms);
        EXPECT_EQ(platform::window::TopLevelWindows().size(), 0U);
        EXPECT_EQ(bench.Ended(), row.answer_after == 0ms);
        bench.RunFor(60ms);
        EXPECT_EQ(bench.Ended(), !row.runs);
        EXPECT_EQ(first.brought_forward, row.runs ? 0 : 1);
        if (row.runs) {
            EXPECT_EQ(bench.Buttons(), "Power On");
            bench.Close();
        } else {
            EXPECT_EQ(bench.TakeLog(), std::vector<std::string>());
            bench.ExpectExit(S_FALSE);
        }
        // Its own mutex only where the name was free.
        bench.platform.AllowHandles(row.ends_after >= 0ms ? 1 : 0);
    }
}

TEST(SecondProcess, EndsWithAnErrorWhenTheNameIsOfAnotherKind) {
    WizardBench bench;
    bench.platform.board.neighbour.objects[kFirstName] = NamedKind::kMessageQueue;
    bench.Start();
    bench.ExpectExit(static_cast<int>(0x80070057));
}

}  // namespace
}  // namespace tests
