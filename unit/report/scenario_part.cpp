#include <algorithm>
#include <string_view>

#include "control/protocol.h"
#include "unit/report/markup.h"
#include "unit/report/report_parts.h"
#include "unit/report/report_table.h"

namespace unit {
namespace {

constexpr int kMostLines = 2000;

// Why the command failed, without its place and its text.
std::string Reason(const RunReport& report) {
    const std::string command =
        report.failed_step->Place() + ": " + report.failed_step->text + ": ";
    const std::string summary = SummaryOf(report.result);
    return summary.starts_with(command) ? summary.substr(command.size()) : summary;
}

// The lines of a file with the time at which each began, and the failed one marked. Of included
// files only the one that failed is open.
std::string Source(const RunReport& report, const ScenarioSource& source) {
    const Step* const failed = report.failed_step && report.failed_step->file == source.file
                                   ? report.failed_step
                                   : nullptr;
    // The lines around the one that failed.
    const int from = failed ? std::max(0, failed->line - kMostLines / 2) : 0;
    ReportTable table({"Line", "Began", "Command"});
    int number = 0;
    control::ForEachLine(source.text, [&](std::string_view line) {
        ++number;
        if (number <= from || number > from + kMostLines)
            return;
        const bool failed_here = failed && failed->line == number;
        std::string began;
        if (const auto at = report.record.lines.find({source.file, number});
            at != report.record.lines.end()) {
            began = ShortTime(at->second.first);
            if (at->second.count > 1)
                began += " &#215;" + std::to_string(at->second.count);
        }
        std::string command = Element("code", ShortText(line));
        if (failed_here)
            command = Element("mark id=\"" + std::string(kFailedLineId) + "\"", command) +
                      Element("p", ShortText(Reason(report)));
        const std::string text(line);
        const std::size_t first = text.find_first_not_of(" \t\r");
        const bool comment = first == std::string::npos || text[first] == '#';
        table.Add({std::to_string(number), began, command}, failed_here ? "failed"
                                                            : comment   ? "comment"
                                                                        : "");
    });
    const auto left_out = static_cast<std::size_t>(std::max(0, number - kMostLines));
    const std::string lines = table.Html("source") + LeftOutNote(left_out, "lines");
    if (&source == report.sources.data())
        return Element("h3", Escaped(source.file)) + lines;
    return Element(failed ? "details open=\"open\"" : "details",
                   Element("summary", Escaped(source.file)) + lines);
}

}  // namespace

ReportPart ScenarioPart(const RunReport& report) {
    std::string html;
    for (const ScenarioSource& source : report.sources)
        html += Source(report, source);
    return {"scenario", "Scenario", std::nullopt, html};
}

}  // namespace unit
