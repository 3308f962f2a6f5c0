#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace unit {

// What a trace is written for.
enum class TraceFormat {
    kPcapng,    // network analyzers: the frames of the serial line
    kPerfetto,  // timeline viewers: all events, in the JSON format of trace events
    kText,      // people: the lines of `unitctl watch all`
};

// By its name ("pcapng") or by a file's ending ("run.json"); empty for another one.
std::optional<TraceFormat> TraceFormatNamed(std::string_view name);
std::optional<TraceFormat> TraceFormatOf(const std::string& file);

// ".pcapng", ".json" or ".txt".
std::string_view EndingOf(TraceFormat format);

// "pcapng, perfetto and text"
std::string TraceFormatNames();
// ".pcapng, .json and .txt"
std::string TraceEndings();

}  // namespace unit
