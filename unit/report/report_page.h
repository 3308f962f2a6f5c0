#pragma once

#include <span>
#include <string>
#include <vector>

#include "unit/report/run_collector.h"
#include "unit/report/run_result.h"
#include "unit/scenario/scenario.h"

namespace unit {

// What the page of a run is made of.
struct RunReport {
    const RunResult& result;
    const RunRecord& record;
    std::span<const ScenarioSource> sources = {};  // of a scenario
    const Step* failed_step = nullptr;             // the command that failed
};

// The name of the page that lists the pages of all runs.
inline constexpr char kIndexPage[] = "index.html";

// The name of each run's page, in the same order: "NAME.html", or "NAME-2.html" for another run of
// that name.
std::vector<std::string> PageNames(std::span<const std::string> runs);

// The page of a run: a whole document in HTML that refers to nothing else but the index. Its lists
// have at most as many entries as RunRecord and ScreenGallery keep, a text at most 2,000 bytes, and
// a file of the scenario at most 2,000 lines.
std::string ReportPage(const RunReport& report);

// The index: a row for each run, those that failed first. `pages` are the names of their pages.
std::string ReportIndex(std::span<const RunResult> results, std::span<const std::string> pages);

}  // namespace unit
