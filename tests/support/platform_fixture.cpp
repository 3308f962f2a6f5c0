#include "tests/support/platform_fixture.h"

#include <gtest/gtest.h>

#include "platform/gdi/device_context.h"
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

std::wstring PlainBoard::debug_output() const {
    const std::scoped_lock lock(mutex_);
    return output_;
}

std::vector<std::wstring> PlainBoard::lines() const {
    const std::wstring output = debug_output();
    std::vector<std::wstring> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = output.find(L"\r\n", start)) != std::wstring::npos;
         start = end + 2)
        lines.push_back(output.substr(start, end - start));
    return lines;
}

void PlainBoard::ClearOutput() {
    const std::scoped_lock lock(mutex_);
    output_.clear();
}

std::shared_ptr<platform::device::StreamDriver> PlainBoard::FindDriver(std::wstring_view name) {
    const auto driver = drivers.find(name);
    return driver == drivers.end() ? nullptr : driver->second;
}

bool PlainBoard::ReadPowerSupply(platform::PowerSupply& out) {
    out = supply;
    return supply_readable;
}

DWORD PlainBoard::HalRequest(DWORD code, std::span<const std::byte> input, std::span<std::byte>,
                             DWORD&) {
    hal_codes.push_back(code);
    if (on_hal_request)
        on_hal_request(input);
    return hal_answer;
}

DWORD PlainBoard::ChangeSystemPower(DWORD state_flags, DWORD options) {
    power_states.push_back(state_flags);
    power_options.push_back(options);
    return ERROR_SUCCESS;
}

void PlainBoard::DebugOutput(std::wstring_view text) {
    const std::scoped_lock lock(mutex_);
    output_ += text;
}

void PlainBoard::CountQuestion() {
    kernel::HandleCount();
    ++neighbour.questions;
}

platform::NamedKind PlainBoard::FindNeighbourObject(std::wstring_view name) {
    CountQuestion();
    const auto object = neighbour.objects.find(name);
    return object == neighbour.objects.end() ? platform::NamedKind::kNone : object->second;
}

platform::NeighbourWindow PlainBoard::FindNeighbourWindow(
    std::optional<std::wstring_view> class_name, std::optional<std::wstring_view> title) {
    CountQuestion();
    const bool fits = class_name.value_or(neighbour.window_class) == neighbour.window_class &&
                      title.value_or(neighbour.title) == neighbour.title;
    return fits ? neighbour.window : 0;
}

bool PlainBoard::NeighbourWindowExists(platform::NeighbourWindow window) {
    CountQuestion();
    return window == neighbour.window;
}

bool PlainBoard::BringNeighbourForward(platform::NeighbourWindow window, bool with_owned) {
    CountQuestion();
    neighbour.brought_forward += with_owned ? 1 : 0;
    return window == neighbour.window;
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
    kernel::RunHardware([&] {
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
    kernel::RunHardware([&] { return passed; });
}

}  // namespace tests
