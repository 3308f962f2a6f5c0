#include "unit/traces/trace_format.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "control/words.h"

namespace unit {
namespace {

struct FormatRow {
    TraceFormat format;
    std::string_view name;
    std::string_view ending;
};
constexpr FormatRow kFormats[] = {
    {TraceFormat::kPcapng, "pcapng", ".pcapng"},
    {TraceFormat::kPerfetto, "perfetto", ".json"},
    {TraceFormat::kText, "text", ".txt"},
};

std::string Listed(std::string_view FormatRow::*column) {
    std::vector<std::string_view> words;
    for (const FormatRow& row : kFormats)
        words.push_back(row.*column);
    return control::ListText(words);
}

template <class Matches>
std::optional<TraceFormat> Find(Matches matches) {
    const auto row = std::ranges::find_if(kFormats, matches);
    return row == std::end(kFormats) ? std::nullopt : std::optional(row->format);
}

}  // namespace

std::optional<TraceFormat> TraceFormatNamed(std::string_view name) {
    return Find([name](const FormatRow& row) { return row.name == name; });
}

std::optional<TraceFormat> TraceFormatOf(const std::string& file) {
    return Find([&file](const FormatRow& row) { return file.ends_with(row.ending); });
}

std::string_view EndingOf(TraceFormat format) {
    return std::ranges::find(kFormats, format, &FormatRow::format)->ending;
}

std::string TraceFormatNames() {
    return Listed(&FormatRow::name);
}

std::string TraceEndings() {
    return Listed(&FormatRow::ending);
}

}  // namespace unit
