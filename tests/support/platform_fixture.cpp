#include "tests/support/platform_fixture.h"

#include <gtest/gtest.h>

#include "platform/gdi/gdi.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"
#include "platform/window/screen.h"

namespace tests {

namespace kernel = platform::kernel;

namespace {

// The fonts are loaded once for all platforms of a process.
class GdiEnd final : public testing::Environment {
  public:
    void TearDown() override { platform::gdi::Shutdown(); }
};
const auto* const kGdiEnd = testing::AddGlobalTestEnvironment(new GdiEnd);

}  // namespace

std::vector<std::wstring> PlainBoard::lines() const {
    const std::wstring output = debug_output();
    std::vector<std::wstring> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = output.find(L"\r\n", start)) != std::wstring::npos;
         start = end + 2)
        lines.push_back(output.substr(start, end - start));
    return lines;
}

Platform::Platform(const kernel::Options& options) {
    kernel::Boot(options, board);
    platform::window::Start();
}

Platform::~Platform() {
    EXPECT_EQ(platform::window::End(), 0U) << "windows left";
    const kernel::Leftovers leftovers = kernel::Shutdown();
    EXPECT_EQ(leftovers.threads, 0U) << "threads left";
    EXPECT_EQ(leftovers.handles, allowed_handles_) << "handles left";
    EXPECT_EQ(platform::gdi::DeviceContextCount(), 0U) << "device contexts left";
}

void Platform::Run(std::function<void()> body, kernel::Duration limit) {
    const auto entry = [body = std::move(body)] {
        body();
        return DWORD{0};
    };
    const auto thread = kernel::StartThread(entry, THREAD_PRIORITY_NORMAL, kernel::kProgramProcess);
    bool late = false;
    const kernel::EventId alarm = kernel::After(limit, [&] { late = true; });
    kernel::RunHostThread([&] {
        const kernel::KernelLock lock = kernel::LockKernel();
        return thread->ended || late;
    });
    kernel::Cancel(alarm);
    ASSERT_FALSE(late) << "still running after its unit time";
}

void Platform::RunFor(kernel::Duration time) {
    // An action of its own, so that what is due by then has run before.
    bool passed = false;
    kernel::After(time, [&] { passed = true; });
    kernel::RunHostThread([&] { return passed; });
}

}  // namespace tests
