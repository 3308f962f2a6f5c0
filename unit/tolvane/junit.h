#pragma once

#include <span>
#include <string>

#include "unit/report/run_result.h"

namespace unit {

// The results in the XML format of JUnit, which CI servers read: a test case for each scenario,
// with the output of those that failed.
std::string JUnitReport(std::span<const RunResult> results);

}  // namespace unit
