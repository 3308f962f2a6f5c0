#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "platform/kernel/kernel.h"

namespace tests {

struct RunMode {
    const char* name;
    platform::kernel::Options options;
};

inline const RunMode kRunModes[] = {
    {"Simulated", {}},
    {"Preempted", {.seed = 7, .preempt = true}},
    {"FreeRunning", {.mode = platform::kernel::Mode::kFreeRunning, .speed = 100}},
};

inline void PrintTo(const RunMode& mode, std::ostream* out) {
    *out << mode.name;
}

// A test that holds however the platform runs; with INSTANTIATE_IN_EVERY_MODE below.
class InEveryMode : public testing::TestWithParam<RunMode> {};

inline std::string RunModeName(const testing::TestParamInfo<RunMode>& mode) {
    return mode.param.name;
}

}  // namespace tests

#define INSTANTIATE_IN_EVERY_MODE(suite) \
    INSTANTIATE_TEST_SUITE_P(All, suite, testing::ValuesIn(tests::kRunModes), tests::RunModeName)
