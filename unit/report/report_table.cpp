#include "unit/report/report_table.h"

#include "unit/events/event_text.h"
#include "unit/report/markup.h"

namespace unit {
namespace {

std::string LeftOut(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + " left out here";
}

}  // namespace

std::string ShortText(std::string_view text) {
    constexpr std::size_t kMostBytes = 2000;
    if (text.size() <= kMostBytes)
        return Escaped(text);
    std::size_t size = kMostBytes;
    // Not in the middle of a character of UTF-8.
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size;
    return Escaped(text.substr(0, size)) + "&#8230;";
}

std::string ShortTime(std::chrono::microseconds time) {
    const std::string text = TraceTime(time);
    return text.substr(text.find_first_not_of(' '));
}

std::string LeftOutNote(std::size_t count, std::string_view what) {
    return count == 0 ? std::string() : Element("p class=\"gap\"", LeftOut(count, what));
}

std::string NoneNote(std::string_view text) {
    return Element("p class=\"none\"", Escaped(text));
}

void ReportTable::Add(const std::vector<std::string>& texts, const std::string& kind) {
    rows_ += kind.empty() ? "<tr>" : "<tr class=\"" + kind + "\">";
    for (const std::string& text : texts)
        rows_ += Element("td", text);
    rows_ += "</tr>\n";
}

void ReportTable::AddGap(std::size_t count) {
    const std::string all = "td colspan=\"" + std::to_string(columns_.size()) + "\"";
    rows_ += Element("tr class=\"gap\"", Element(all, LeftOut(count, "entries"))) + "\n";
}

std::string ReportTable::Html(const std::string& style) const {
    if (rows_.empty())
        return NoneNote();
    std::string head;
    for (const std::string& column : columns_)
        head += Element("th scope=\"col\"", column);
    return Element("div class=\"box " + style + "-box\" tabindex=\"0\"",
                   Element("table class=\"" + style + "\"",
                           Element("thead", Element("tr", head)) + Element("tbody", rows_)));
}

}  // namespace unit
