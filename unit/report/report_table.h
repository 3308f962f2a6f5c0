#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/report/excerpt.h"

namespace unit {

// The text as markup, at most 2,000 bytes of it.
std::string ShortText(std::string_view text);

// The unit's time in seconds: "23.456".
std::string ShortTime(std::chrono::microseconds time);

// "12 screens left out here", as a note; empty for none.
std::string LeftOutNote(std::size_t count, std::string_view what);

// Stands for an empty list.
std::string NoneNote(std::string_view text = "None.");

// A table that scrolls in a box on the screen, and is whole on paper.
class ReportTable {
  public:
    explicit ReportTable(std::vector<std::string> columns) : columns_(std::move(columns)) {}

    // The texts of the columns as markup; `kind` names the row's style.
    void Add(const std::vector<std::string>& texts, const std::string& kind = {});
    void AddGap(std::size_t count);

    // Its markup, in the style of that name; a note when it has no rows.
    std::string Html(const std::string& style) const;

  private:
    const std::vector<std::string> columns_;
    std::string rows_;
};

// Calls row(table, entry) for each entry.
template <class Entry, class Row>
std::string TableOf(const Excerpt<Entry>& entries, std::vector<std::string> columns,
                    const std::string& style, Row row) {
    ReportTable table(std::move(columns));
    entries.ForEach([&](const Entry& entry) { row(table, entry); },
                    [&](std::size_t count) { table.AddGap(count); });
    return table.Html(style);
}

}  // namespace unit
