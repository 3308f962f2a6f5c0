#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "unit/report/report_page.h"

namespace unit {

// A part of a run's page.
struct ReportPart {
    const char* id;
    const char* title;
    std::optional<std::size_t> count;  // of its entries
    std::string html;
};

// Links lead to them.
inline constexpr char kFailedLineId[] = "failed-line";
inline constexpr char kLastScreenId[] = "last-screen";

ReportPart ScreensPart(const RunReport& report);

// The update's percent over the unit's time as SVG, with a mark for each fault, reset and change of
// the power, and for the failure if there is one, and with the wizard's steps below.
ReportPart TimelinePart(const RunReport& report);

// The files of the scenario, with the times and the line that failed.
ReportPart ScenarioPart(const RunReport& report);

// Which faults were set, which took effect, and which were not cleared until the end.
ReportPart FaultsPart(const RunReport& report);
ReportPart EventsPart(const RunReport& report);
ReportPart LinePart(const RunReport& report);
ReportPart LogPart(const RunReport& report);

}  // namespace unit
