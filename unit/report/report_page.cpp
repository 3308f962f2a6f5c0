#include "unit/report/report_page.h"

#include <cstdio>
#include <utility>

#include "control/build_info.h"
#include "unit/report/document.h"
#include "unit/report/markup.h"
#include "unit/report/report_parts.h"
#include "unit/report/report_table.h"

namespace unit {
namespace {

std::string Failure(const RunReport& report) {
    const RunResult& result = report.result;
    if (result.passed)
        return {};
    const std::string summary = SummaryOf(result);
    std::string html = Element("p", ShortText(summary));
    if (result.problem.size() > summary.size())
        html += Element("pre", ShortText(result.problem.substr(summary.size() + 1)));
    if (report.failed_step)
        html += Element(
            "p", Element("a href=\"#" + std::string(kFailedLineId) + "\"", "The line that failed") +
                     " &#183; " +
                     Element("a href=\"#" + std::string(kLastScreenId) + "\"", "The screen then"));
    return Element("div class=\"failure\" role=\"alert\"", html) + "\n";
}

std::string Facts(const RunReport& report) {
    const RunRecord& record = report.record;
    const bool simulated = record.kernel.mode == platform::kernel::Mode::kSimulated;
    std::string firmware;
    for (const std::string& version : record.firmware)
        firmware += (firmware.empty() ? "" : ", then ") + version;
    char speed[64] = "simulated";
    if (!simulated)
        std::snprintf(speed, sizeof speed, "free-running, %g times as fast as the host",
                      record.kernel.speed);
    const std::pair<const char*, std::string> facts[] = {
        {"Unit time", SecondsText(report.result.unit_time)},
        {"Real time", SecondsText(report.result.time)},
        {"Clock", speed},
        {"Seed", std::to_string(record.kernel.seed)},
        {"Program", record.program},
        {"Firmware of the DVR", firmware.empty() ? "not reported" : firmware},
        {"Tolvane", control::BuildInfo()},
        {"Date", DateText()},
    };
    std::string html;
    for (const auto& [name, value] : facts)
        html += Element("div", Element("dt", name) + Element("dd", ShortText(value)));
    return Element("dl class=\"facts\"", html) + "\n";
}

std::string Links(std::span<const ReportPart> parts) {
    std::string html;
    for (const ReportPart& part : parts) {
        std::string text = part.title;
        if (part.count)
            text += " " + Element("span", std::to_string(*part.count));
        html += Element("a href=\"#" + std::string(part.id) + "\"", text);
    }
    return Element("nav aria-label=\"Parts\"", html);
}

}  // namespace

std::string ReportPage(const RunReport& report) {
    std::vector<ReportPart> parts{ScreensPart(report), TimelinePart(report)};
    if (!report.sources.empty())
        parts.push_back(ScenarioPart(report));
    for (const auto part : {FaultsPart, EventsPart, LinePart, LogPart})
        parts.push_back(part(report));
    const std::string name = report.result.name;
    const bool passed = report.result.passed;
    const std::string index = "a href=\"" + std::string(kIndexPage) + "\"";
    std::string body =
        Element("header", Element("p class=\"up\"", Element(index, "All runs")) +
                              Element("h1", Badge(passed) + " " + Escaped(name)) + Links(parts)) +
        "\n" + Failure(report) + Facts(report);
    for (const ReportPart& part : parts)
        body += Element("section id=\"" + std::string(part.id) + "\"",
                        Element("h2", part.title) + part.html) +
                "\n";
    return Document(name + ": " + VerdictWord(passed), body);
}

}  // namespace unit
