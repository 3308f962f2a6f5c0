#include <gtest/gtest.h>

#include "tests/rig/wizard_run.h"

// What the scenarios of the library cannot say about the road of the update.

namespace tests {
namespace {

using namespace std::chrono_literals;

TEST(UpdateRoad, ClosesInOrderFromEveryMoment) {
    for (int tenths = 0; tenths < 600; tenths += 23) {
        SCOPED_TRACE(tenths);
        WizardRun run;
        const auto user = [&run](const wchar_t* caption) {
            if (run.screen().Shows(caption))
                run.Tap(caption);
        };
        for (int passed = 0; passed < tenths; passed += 5) {
            run.RunFor(400ms);
            for (const wchar_t* caption : {L"Power On", L"OK", L"Next", L"Update"})
                user(caption);
            if (run.screen().Shows(L"5. DVR用SDカード挿入口にSDカードを入れて下さい。"))
                run.InsertImage();
        }
        run.Close();
    }
}

// Also when the tick count begins anew while the DVR updates.
TEST(UpdateRoad, RandomSchedulesReachTheSameEnd) {
#ifdef __SANITIZE_THREAD__
    // One thread at a time: there is little to see for this sanitizer, and it is slow.
    constexpr std::uint32_t kSeeds = 4;
#else
    constexpr std::uint32_t kSeeds = 20;
#endif
    for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        unit::VirtualUnit::Options options;
        options.kernel.seed = seed;
        options.kernel.preempt = true;
        options.kernel.start = std::chrono::milliseconds(std::uint64_t{1} << 32) - 30s;
        options.dvr.dvr.seed = seed;
        WizardRun run(options);
        run.GoToRemoveCard();
        EXPECT_LT(GetTickCount(), 120000U);
        run.unit().RemoveCard();
        ASSERT_TRUE(run.WaitForText(L"Next", 3s));
        ASSERT_TRUE(run.Tap(L"Next"));
        ASSERT_TRUE(run.WaitForText(L"ファームウェアのアップデート終了です。", 20s));
    }
}

}  // namespace
}  // namespace tests
