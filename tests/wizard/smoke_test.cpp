#include <gtest/gtest.h>
#include <iostream>
#include "tests/bench/wizard_bench.h"
namespace tests { namespace {
class Smoke : public testing::TestWithParam<int> {};
TEST_P(Smoke, Walk) {
    WizardBench bench;
    bench.GoTo(GetParam());
    for (const auto& line : bench.Lines()) std::cout << line << "\n";
    std::cout << "[" << bench.Buttons() << "]\n";
    for (const auto& line : bench.TakeLog()) std::cout << line << "\n";
    bench.Close();
    for (const auto& line : bench.TakeLog()) std::cout << line << "\n";
}
INSTANTIATE_TEST_SUITE_P(All, Smoke, testing::Range(-1,7));
} }
