#include <glib.h>

#include <chrono>
#include <memory>

#include "unit/picture/picture.h"
#include "unit/report/markup.h"
#include "unit/report/report_parts.h"
#include "unit/report/report_table.h"

namespace unit {
namespace {

std::string DataUri(const Picture& picture) {
    std::string problem;
    const std::string png = EncodePng(picture, problem);
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_base64_encode(reinterpret_cast<const guchar*>(png.data()), png.size()), g_free);
    return std::string("data:image/png;base64,") + text.get();
}

std::string Caption(const RunRecord& record, const ShownScreen& screen) {
    std::string caption = Element("b", screen.name.empty() ? "empty" : ShortText(screen.name)) +
                          " " + Element("time", ShortTime(screen.time) + " s");
    const ScreenGallery::Repeats repeats = record.screens.RepeatsOf(screen.digest);
    for (const std::chrono::microseconds& time : repeats.first)
        caption += (&time == repeats.first.data() ? "; again at " : ", ") + ShortTime(time) + " s";
    if (repeats.count > repeats.first.size())
        caption += " and " + std::to_string(repeats.count - repeats.first.size()) + " times more";
    if (screen.similar_before > 0)
        caption += "; left out before it, with other numbers only: " +
                   std::to_string(screen.similar_before);
    return caption;
}

}  // namespace

ReportPart ScreensPart(const RunReport& report) {
    const Excerpt<ShownScreen>& screens = report.record.screens.screens();
    std::string figures;
    int number = 0;
    screens.ForEach(
        [&](const ShownScreen& screen) {
            const bool last = screen.digest == report.record.screens.last_digest();
            const std::string id = "screen-" + std::to_string(++number);
            std::string texts;
            for (const std::string& text : screen.texts)
                texts += (texts.empty() ? "" : "\n") + text;
            std::string caption = Caption(report.record, screen);
            if (last)
                caption += Element(
                    "p id=\"" + std::string(kLastScreenId) + "\"",
                    report.result.passed ? "The last screen" : "On the screen at the failure");
            // A link to the figure shows it in its full size, and the one in it goes back.
            figures += Element(
                "figure id=\"" + id + "\"" +
                    (last && !report.result.passed ? " class=\"failed\"" : ""),
                Element("a href=\"#" + id + "\"", "<img width=\"800\" height=\"480\" alt=\"" +
                                                      ShortText(texts) + "\" src=\"" +
                                                      DataUri(screen.picture) + "\"/>") +
                    Element("figcaption", caption + Element("a class=\"back\" href=\"#screens\"",
                                                            "All screens")));
        },
        [&](std::size_t count) { figures += LeftOutNote(count, "screens"); });
    return {"screens", "Screens", screens.count(), Element("div class=\"screens\"", figures)};
}

}  // namespace unit
