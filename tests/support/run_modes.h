#pragma once

#include <gtest/gtest.h>

#include <ostream>

#include "platform/kernel/kernel.h"

namespace tests {

struct RunMode {
    const char* name;
    platform::kernel::Options options;
};

inline void PrintTo(const RunMode& mode, std::ostream* out) {
    *out << mode.name;
}

inline const RunMode kRunModes[] = {
    {"Simulated", {}},
    {"Preempted", {.seed = 7, .preempt = true}},
    {"FreeRunning", {.mode = platform::kernel::Mode::kFreeRunning, .speed = 100}},
};

// A test that holds in every mode.
class InEveryMode : public testing::TestWithParam<RunMode> {};

}  // namespace tests

#define INSTANTIATE_IN_EVERY_MODE(suite)                                      \
    INSTANTIATE_TEST_SUITE_P(All, suite, testing::ValuesIn(tests::kRunModes), \
                             [](const auto& mode) { return std::string(mode.param.name); })
