#include "unit/tolvane/junit.h"

#include <algorithm>
#include <cstdio>

#include "unit/report/markup.h"

namespace unit {
namespace {

std::string Seconds(std::chrono::duration<double> time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", time.count());
    return text;
}

std::string Counts(std::span<const RunResult> results) {
    std::chrono::duration<double> time{};
    for (const RunResult& result : results)
        time += result.time;
    const auto failed = std::ranges::count(results, false, &RunResult::passed);
    return " tests=\"" + std::to_string(results.size()) + "\" failures=\"" +
           std::to_string(failed) + "\" time=\"" + Seconds(time) + "\"";
}

}  // namespace

std::string JUnitReport(std::span<const RunResult> results) {
    const std::string counts = Counts(results);
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + counts +
                      ">\n<testsuite name=\"tolvane\"" + counts + ">\n";
    for (const RunResult& result : results) {
        xml += "<testcase classname=\"scenarios\" name=\"" + Escaped(result.name) + "\" time=\"" +
               Seconds(result.time) + "\"";
        if (result.passed) {
            xml += "/>\n";
            continue;
        }
        xml += ">\n<failure message=\"" + Escaped(SummaryOf(result)) + "\">" +
               Escaped(result.problem) + "</failure>\n<system-out>" + Escaped(result.output) +
               "</system-out>\n</testcase>\n";
    }
    return xml + "</testsuite>\n</testsuites>\n";
}

}  // namespace unit
