#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "unit/commands/operator.h"

namespace unit {

// Follows commands for the panel and remembers them: what a button does can be read here and typed
// again. Hardware's thread.
class CommandRunner {
  public:
    struct Entry {
        std::chrono::microseconds time;  // of the unit
        std::string line;
        bool done;
        std::string reply;
    };

    CommandRunner(const UnitTable& table, Operator& op) : table_(table), operator_(op) {}

    void Follow(const std::string& line);

    // Whether there is such a command, whatever its outcome would be. Asked for every button of
    // every picture, so the answers are kept.
    bool Knows(const std::string& line);
    const std::map<std::string, bool>& asked() const { return asked_; }

    // What the command does, a sentence; empty when there is none.
    std::string HelpOf(const std::string& line) const;

    // Words that may follow the last blank of an unfinished line.
    std::vector<std::string> Complete(const std::string& line) const;

    // Oldest first, the last 500 of them.
    const std::deque<Entry>& entries() const { return entries_; }
    const UnitTable& table() const { return table_; }

  private:
    const UnitTable& table_;
    Operator& operator_;
    std::deque<Entry> entries_;
    std::map<std::string, bool> asked_;
};

}  // namespace unit
