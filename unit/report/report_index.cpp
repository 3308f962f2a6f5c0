#include <algorithm>
#include <set>

#include "control/build_info.h"
#include "unit/report/document.h"
#include "unit/report/markup.h"
#include "unit/report/report_page.h"

namespace unit {

std::vector<std::string> PageNames(std::span<const std::string> runs) {
    std::set<std::string> taken{kIndexPage};
    std::vector<std::string> names;
    for (const std::string& run : runs) {
        std::string name = run + ".html";
        for (int number = 2; !taken.insert(name).second; ++number)
            name = run + "-" + std::to_string(number) + ".html";
        names.push_back(std::move(name));
    }
    return names;
}

std::string ReportIndex(std::span<const RunResult> results, std::span<const std::string> pages) {
    std::string failed;
    std::string passed;
    for (std::size_t index = 0; index < results.size(); ++index) {
        const RunResult& result = results[index];
        (result.passed ? passed : failed) +=
            Element(result.passed ? "tr" : "tr class=\"failed\"",
                    Element("td", Badge(result.passed)) +
                        Element("td", Element("a href=\"" + Escaped(LinkPath(pages[index])) + "\"",
                                              Escaped(result.name))) +
                        Element("td class=\"number\"", SecondsText(result.unit_time)) +
                        Element("td class=\"number\"", SecondsText(result.time)) +
                        Element("td", Escaped(SummaryOf(result)))) +
            "\n";
    }
    const auto count = std::ranges::count(results, true, &RunResult::passed);
    const bool all = count == std::ssize(results);
    const std::string title =
        std::to_string(count) + " of " + std::to_string(results.size()) + " passed";
    std::chrono::microseconds unit_time{};
    std::chrono::duration<double> time{};
    for (const RunResult& result : results) {
        unit_time += result.unit_time;
        time += result.time;
    }
    std::string head;
    for (const char* column : {"Verdict", "Run", "Unit time", "Real time", "Failure"})
        head += Element("th scope=\"col\"", column);
    return Document(
        title, Element("header", Element("h1", Badge(all) + " " + title) +
                                     Element("p", SecondsText(unit_time) + " of unit time in " +
                                                      SecondsText(time) + " &#183; tolvane " +
                                                      Escaped(control::BuildInfo()) + " &#183; " +
                                                      Escaped(DateText()))) +
                   Element("div class=\"box whole\"",
                           Element("table class=\"runs\"", Element("thead", Element("tr", head)) +
                                                               Element("tbody", failed + passed))));
}

}  // namespace unit
