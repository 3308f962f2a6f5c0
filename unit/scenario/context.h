#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "unit/commands/operator.h"
#include "unit/scenario/event_log.h"

namespace unit {

struct Step;

// How a scenario is run.
struct RunOptions {
    // The folder for the numbered pictures of `picture`; empty: none are saved.
    std::string pictures;
    // A failed run saves its report in a folder here, named after the scenario; empty: no report.
    std::string out;
    // `expect screen` and `expect graphics` create their files instead of comparing.
    bool update_screens = false;
    std::uint32_t seed = 1;  // of the unit, for the report
    // Receives a line for the person who runs the scenario.
    std::function<void(const std::string&)> say = [](const std::string&) {};
    // Receives each command as it begins.
    std::function<void(const Step&)> began = [](const Step&) {};
    // Receives the text of each command as it begins, and its result.
    std::function<void(const std::string&)> trace = [](const std::string&) {};
};

// What conditions remember of the events: from one command of a scenario to the next, or between
// single commands for a running unit. Host thread.
struct EventMemory {
    explicit EventMemory(EventHub& hub, std::size_t limit = EventLog::kMaxEvents)
        : events(hub, limit) {}

    EventLog events;
    // Conditions ignore the events before this one: 0, or the count at the last `forget`.
    std::size_t begin = 0;
    // For each kind of event, where the next `wait` for that kind begins.
    std::array<std::size_t, kEventKinds> next_wait{};
};

// What the commands of a running scenario use. Host thread.
struct ScenarioContext {
    Operator& op;
    const RunOptions& options;
    // The folder for this run's failure report; empty: no report.
    std::string out;
    std::shared_ptr<EventMemory> memory;
    std::size_t pictures = 0;
};

}  // namespace unit
