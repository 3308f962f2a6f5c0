#pragma once

#include <msgqueue.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/run_modes.h"

namespace tests {

namespace kernel = platform::kernel;
using namespace std::chrono_literals;

// Threads that a platform thread starts and joins.
class Crew {
  public:
    Crew() = default;
    // With one thread.
    explicit Crew(std::function<void()> body) { Start(std::move(body)); }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew() { Join(); }

    void Start(std::function<void()> body, int priority = THREAD_PRIORITY_NORMAL) {
        const auto entry = [body = std::move(body)] {
            body();
            return DWORD{0};
        };
        handles_.push_back(kernel::OpenHandle(kernel::StartThread(entry, priority)));
    }

    void Join() {
        for (const HANDLE handle : handles_) {
            WaitForSingleObject(handle, INFINITE);
            CloseHandle(handle);
        }
        handles_.clear();
    }

  private:
    std::vector<HANDLE> handles_;
};

// Runs `body` on a thread of a new platform.
inline void OnPlatform(const std::function<void()>& body, const kernel::Options& options = {}) {
    Platform platform(options);
    platform.Run(body);
}

// Runs `body` with each case (which has a `name`) on a new platform.
template <class Cases, class Body>
void OnPlatformForEach(const Cases& cases, Body body) {
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        OnPlatform([&] { body(each); });
    }
}

#define TESTS_ON_PLATFORM(kind, suite, name, ...)                 \
    static void suite##name([[maybe_unused]] Platform& platform); \
    kind(suite, name) {                                           \
        Platform platform __VA_ARGS__;                            \
        platform.Run([&] { suite##name(platform); });             \
    }                                                             \
    static void suite##name([[maybe_unused]] Platform& platform)

// A test that runs on a thread of a new `platform`; the same in every mode.
#define PLATFORM_TEST(suite, name) TESTS_ON_PLATFORM(TEST, suite, name)
#define EVERY_MODE_TEST(suite, name) TESTS_ON_PLATFORM(TEST_P, suite, name, (GetParam().options))
#define EVERY_MODE_SUITE(suite) \
    using suite = InEveryMode;  \
    INSTANTIATE_IN_EVERY_MODE(suite)

// Expects that a call returns a false value with this last error.
template <class Call>
void ExpectFails(DWORD error, Call call) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(call());
    EXPECT_EQ(GetLastError(), error);
}

}  // namespace tests
