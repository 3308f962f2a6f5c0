#include "unit/report/document.h"

#include <cstdio>
#include <ctime>
#include <string_view>

#include "unit/report/markup.h"

// The file style.css.
extern "C" const char tolvane_report_style_begin[];
extern "C" const char tolvane_report_style_end[];

namespace unit {

std::string Document(const std::string& title, const std::string& body) {
    const std::string_view style(tolvane_report_style_begin, tolvane_report_style_end);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
           // Nothing is loaded, even if markup should get into a text.
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
           "img-src data:; style-src 'unsafe-inline'\"/>\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
           "<meta name=\"color-scheme\" content=\"light dark\"/>\n" +
           Element("title", Escaped(title)) + "\n" + Element("style", style) +
           "\n</head>\n<body>\n" + body + "</body>\n</html>\n";
}

std::string VerdictWord(bool passed) {
    return passed ? "passed" : "failed";
}

std::string Badge(bool passed) {
    const std::string word = VerdictWord(passed);
    return Element("span class=\"verdict " + word + "\"", word);
}

std::string SecondsText(std::chrono::duration<double> time) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", time.count());
    return text;
}

std::string DateText() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    char text[40];
    const std::size_t size =
        localtime_r(&now, &parts) ? std::strftime(text, sizeof text, "%F %T %z", &parts) : 0;
    return {text, size};
}

}  // namespace unit
