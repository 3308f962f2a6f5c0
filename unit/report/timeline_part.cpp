#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "unit/events/event_text.h"
#include "unit/report/markup.h"
#include "unit/report/report_parts.h"
#include "unit/report/report_table.h"

namespace unit {
namespace {

using std::chrono::microseconds;

// In the units of the picture, which is scaled to the page.
constexpr double kWidth = 960;
constexpr double kHeight = 320;
constexpr double kLeft = 72;
constexpr double kRight = 948;
constexpr double kLanesTop = 16;
constexpr double kLaneHeight = 19;
constexpr double kTop = 92;
constexpr double kBottom = 248;
constexpr double kStepsTop = 258;
constexpr double kStepsBottom = 282;
constexpr double kTimesAt = 304;
constexpr double kLetter = 7.5;  // the width of one, at most

constexpr int kFullPercent = 100;
constexpr int kGridPercent = 25;
constexpr double kMostTicks = 10;

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

std::string Attributes(std::initializer_list<std::pair<const char*, double>> values) {
    std::string text;
    for (const auto& [name, value] : values)
        text += std::string(" ") + name + "=\"" + Number(value) + "\"";
    return text;
}

std::string Line(const char* style, double x1, double y1, double x2, double y2) {
    return "<line class=\"" + std::string(style) + "\"" +
           Attributes({{"x1", x1}, {"y1", y1}, {"x2", x2}, {"y2", y2}}) + "/>";
}

std::string Label(const char* style, double x, double y, const std::string& text) {
    return Element("text class=\"" + std::string(style) + "\"" + Attributes({{"x", x}, {"y", y}}),
                   Escaped(text));
}

// Adds what a pointer over the element shows.
std::string Titled(const std::string& opening, const std::string& content,
                   const std::string& title) {
    return Element(opening, Element("title", Escaped(title)) + content);
}

double PlaceOf(int percent) {
    return kBottom - (kBottom - kTop) * percent / kFullPercent;
}

// 1, 2 or 5 times a power of ten seconds.
double TickInterval(double seconds) {
    double interval = 0.001;
    for (int round = 0; seconds / interval > kMostTicks; ++round)
        interval *= round % 3 == 1 ? 2.5 : 2;
    return interval;
}

// A lane above the plot for each kind of marks, with a shape of its own.
struct Lane {
    std::string_view kind;
    const char* label;
    const char* shape;  // around 0,0
};
constexpr std::string_view kFailure = "failure";
constexpr Lane kLanes[] = {
    {"power", "power", "M0-8L8 0L0 8L-8 0Z"},
    {"reset", "resets", "M-6-6H6V6H-6Z"},
    {"fault", "faults", "M0-8L8 6H-8Z"},
    {kFailure, "failure", "M-6-6L6 6M6-6L-6 6"},
};

class Plot {
  public:
    Plot(const RunRecord& record, bool failed)
        : record_(record),
          failed_(failed),
          length_(std::max(record.end - record.begin, kShortest)) {}

    std::string Svg() const {
        return Element(
            "svg role=\"img\" aria-label=\"Percent of the update over time\" viewBox=\"0 0 " +
                Number(kWidth) + " " + Number(kHeight) + "\"",
            Grid() + Steps() + Percents() + Marks());
    }

  private:
    static constexpr microseconds kShortest{1000};

    static double LaneAt(const Lane& lane) {
        return kLanesTop + kLaneHeight * static_cast<double>(&lane - kLanes);
    }

    double PlaceOf(microseconds time) const {
        const double part = static_cast<double>((time - record_.begin).count()) /
                            static_cast<double>(length_.count());
        return kLeft + (kRight - kLeft) * std::clamp(part, 0.0, 1.0);
    }

    std::string Grid() const {
        std::string svg;
        for (int percent = 0; percent <= kFullPercent; percent += kGridPercent) {
            const double y = unit::PlaceOf(percent);
            svg += Line("grid", kLeft, y, kRight, y) +
                   Label("label", kLeft - 14, y + 4, std::to_string(percent) + " %");
        }
        for (const Lane& lane : kLanes)
            if (failed_ || lane.kind != kFailure)
                svg += Label("label", kLeft - 14, LaneAt(lane) + 4, lane.label);
        const double begin = static_cast<double>(record_.begin.count()) / 1e6;
        const double end = begin + static_cast<double>(length_.count()) / 1e6;
        const double interval = TickInterval(end - begin);
        for (double tick = std::ceil(begin / interval) * interval; tick <= end; tick += interval) {
            const double x = PlaceOf(microseconds(std::llround(tick * 1e6)));
            char text[32];
            std::snprintf(text, sizeof text, "%.6g s", tick);
            svg += Line("grid", x, kBottom, x, kBottom + 5) + Label("time", x, kTimesAt, text);
        }
        return svg;
    }

    // A row of the wizard's steps, each until the next one.
    std::string Steps() const {
        std::string svg;
        std::optional<RunRecord::At<std::string>> shown;
        const auto end = [&](microseconds time) {
            if (shown && !shown->value.empty())
                svg += Step(PlaceOf(shown->time), PlaceOf(time), *shown);
        };
        record_.steps.ForEach([&](const auto& step) {
            end(step.time);
            shown = step;
        });
        end(record_.end);
        return svg;
    }

    static std::string Step(double from, double to, const RunRecord::At<std::string>& step) {
        const double width = std::max(to - from, 1.0);
        // UTF-8 has at least as many bytes as letters.
        const bool fits = static_cast<double>(step.value.size()) * kLetter < width;
        const std::string box = "<rect" +
                                Attributes({{"x", from},
                                            {"y", kStepsTop},
                                            {"width", width},
                                            {"height", kStepsBottom - kStepsTop}}) +
                                "/>";
        return Titled("g class=\"step\"",
                      box + (fits ? Label("", from + width / 2, kStepsBottom - 8, step.value) : ""),
                      TraceTime(step.time) + " " + step.value);
    }

    // A line for each update: a lower percent than before begins another one.
    std::string Percents() const {
        std::string path;
        std::string dots;
        int last = kFullPercent + 1;
        record_.percents.ForEach([&](const RunRecord::At<int>& report) {
            const double x = PlaceOf(report.time);
            const double y = unit::PlaceOf(std::min(report.value, kFullPercent));
            path +=
                (report.value < last ? "M" + Number(x) + " " : "H" + Number(x) + "V") + Number(y);
            last = report.value;
            dots += Titled("circle class=\"dot\"" + Attributes({{"cx", x}, {"cy", y}, {"r", 2.5}}),
                           "", TraceTime(report.time) + " " + std::to_string(report.value) + " %");
        });
        return "<path class=\"curve\" d=\"" + path + "\"/>" + dots;
    }

    std::string Marks() const {
        std::string svg;
        record_.fault_commands.ForEach([&](const RunRecord::At<std::string>& command) {
            svg += Mark("fault", command.time, command.value);
        });
        for (const platform::kernel::FailedCall& call : record_.failed_calls)
            svg += Mark("fault", call.time, MarkText(call));
        record_.marks.ForEach([&](const TimedEvent& timed) {
            svg += Mark(KindOf(timed.event), timed.time, MarkText(timed.event));
        });
        return failed_ ? svg + Mark(std::string(kFailure), record_.end, "the run failed") : svg;
    }

    static const char* KindOf(const Event& event) {
        if (std::holds_alternative<DvrReset>(event))
            return "reset";
        const bool power = std::holds_alternative<SupplyChanged>(event) ||
                           std::holds_alternative<UnitSuspended>(event) ||
                           std::holds_alternative<UnitWoken>(event);
        return power ? "power" : "fault";
    }

    std::string Mark(const std::string& kind, microseconds time, const std::string& title) const {
        const Lane& lane = *std::ranges::find(kLanes, kind, &Lane::kind);
        const double x = PlaceOf(time);
        const double y = LaneAt(lane);
        return Titled("g class=\"mark " + kind + "\"",
                      Line("", x, y, x, kBottom) + "<path d=\"" + lane.shape +
                          "\" transform=\"translate(" + Number(x) + " " + Number(y) + ")\"/>",
                      TraceTime(time) + " " + title);
    }

    const RunRecord& record_;
    const bool failed_;
    const microseconds length_;
};

}  // namespace

ReportPart TimelinePart(const RunReport& report) {
    const RunRecord& record = report.record;
    std::string note;
    if (record.percents.count() == 0)
        note = NoneNote("The DVR reported no percent.");
    const std::size_t left_out = record.percents.left_out() + record.marks.left_out() +
                                 record.fault_commands.left_out() + record.steps.left_out();
    note += LeftOutNote(left_out, "percents, marks and steps");
    const std::string plot = Plot(record, !report.result.passed).Svg();
    return {"timeline", "Update over time", std::nullopt,
            Element("div class=\"plot\"", plot) + note};
}

}  // namespace unit
