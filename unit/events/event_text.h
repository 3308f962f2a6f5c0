#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "unit/events/event.h"
#include "unit/events/word_reader.h"

namespace unit {

// An event as text, the same in `unitctl watch`, failure reports and recordings: the word of its
// kind ("card") and the details ("in /cards/new").
struct EventText {
    std::string_view kind;
    std::string details;
};
EventText TextOf(const Event& event);
// Both in one line: "card in /cards/new".
std::string EventLine(const Event& event);
// The request of a driver call, without its result: "driver DVR1: control 0x0881 02".
std::string RequestLine(const DriverCalled& call);

// Whether `unitctl watch` and failure reports show the event: not the bytes of the line, which they
// show as frames, nor each change of the screen.
bool IsTraced(const Event& event);
// Whether a recording holds such events.
bool IsRecorded(const Event& event);

// Reads what EventLine wrote of a recorded kind; throws WrongWord for anything else.
Event ReadEvent(WordReader words);

// A trace record, with the time in seconds: "    23.456  card       in /cards/new".
std::string TraceRecord(const TimedEvent& timed);
// The time alone: "    23.456".
std::string TraceTime(std::chrono::microseconds time);

// Seconds with all six decimals: "21.704512". Reading throws WrongWord.
std::string TimeText(std::chrono::microseconds time);
std::chrono::microseconds ReadTime(WordReader& words);

// "line 1 battery 1 percent 100". Reading throws WrongWord.
std::string SupplyText(const platform::PowerSupply& supply);
platform::PowerSupply ReadSupply(WordReader& words);

}  // namespace unit
