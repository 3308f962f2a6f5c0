#include "unit/tolvane/junit.h"

#include <algorithm>
#include <cstdio>

#include "control/protocol.h"

namespace unit {
namespace {

std::string Escaped(std::string_view text) {
    std::string escaped;
    control::ForEachLine(text, [&](std::string_view line) {
        if (!escaped.empty())
            escaped += "&#10;";
        // XML has no control characters, not even as references.
        for (const char character : control::PlainText(line)) {
            switch (character) {
                case '&':
                    escaped += "&amp;";
                    break;
                case '<':
                    escaped += "&lt;";
                    break;
                case '>':
                    escaped += "&gt;";
                    break;
                case '"':
                    escaped += "&quot;";
                    break;
                default:
                    escaped += character;
            }
        }
    });
    return escaped;
}

std::string Seconds(std::chrono::duration<double> time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", time.count());
    return text;
}

std::string Counts(std::span<const ScenarioResult> results) {
    std::chrono::duration<double> time{};
    for (const ScenarioResult& result : results)
        time += result.time;
    const auto failed = std::ranges::count(results, false, &ScenarioResult::passed);
    return " tests=\"" + std::to_string(results.size()) + "\" failures=\"" +
           std::to_string(failed) + "\" time=\"" + Seconds(time) + "\"";
}

}  // namespace

std::string JUnitReport(std::span<const ScenarioResult> results) {
    const std::string counts = Counts(results);
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + counts +
                      ">\n<testsuite name=\"tolvane\"" + counts + ">\n";
    for (const ScenarioResult& result : results) {
        xml += "<testcase classname=\"scenarios\" name=\"" + Escaped(result.name) + "\" time=\"" +
               Seconds(result.time) + "\"";
        if (result.passed) {
            xml += "/>\n";
            continue;
        }
        const std::string first = result.problem.substr(0, result.problem.find('\n'));
        xml += ">\n<failure message=\"" + Escaped(first) + "\">" + Escaped(result.problem) +
               "</failure>\n<system-out>" + Escaped(result.output) + "</system-out>\n</testcase>\n";
    }
    return xml + "</testsuite>\n</testsuites>\n";
}

}  // namespace unit
