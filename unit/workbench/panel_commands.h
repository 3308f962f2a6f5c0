#pragma once

#include <SDL.h>

#include <chrono>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "unit/commands/operator.h"

namespace unit {

struct PanelContext;

// Executes the panel's commands and keeps them, so that the operator sees which command a button
// stands for and can type it again. Host thread.
class CommandRunner {
  public:
    struct Entry {
        std::chrono::microseconds time;  // of the unit
        std::string line;
        bool done;
        std::string reply;
    };

    CommandRunner(const UnitTable& table, Operator& op) : table_(table), operator_(op) {}

    void Execute(const std::string& line);

    // Whether the line is a valid command. Every button of every frame asks, so the results are
    // kept.
    bool Knows(const std::string& line);
    const std::map<std::string, bool>& known() const { return known_; }

    // A sentence that describes the command; empty for an invalid one.
    std::string HelpOf(const std::string& line) const;

    // The words that can complete the last word of the line, which may be empty.
    std::vector<std::string> Complete(const std::string& line) const;

    // The last 500 commands, oldest first.
    const std::deque<Entry>& entries() const { return entries_; }
    const UnitTable& table() const { return table_; }

  private:
    const UnitTable& table_;
    Operator& operator_;
    std::deque<Entry> entries_;
    std::map<std::string, bool> known_;
};

// A key and what it does while no text field has the keyboard. The keys with a command are single
// letters, which a hand on the keyboard hits by mistake: they act only if the settings say so.
struct KeyRow {
    SDL_Keycode key;
    const char* name;
    const char* help;
    // The command that the key executes now; null for a key of the window itself.
    std::string (*command)(PanelContext& context);
    // Null for a key with a command.
    void (*act)(PanelContext& context);
};

const std::vector<KeyRow>& Keys();

// Nothing for a key without a row, and for a letter that does not act.
void PressKey(PanelContext& context, SDL_Keycode key);

// The name of the key that executes the command now ("C"); empty when there is none.
std::string KeyOf(PanelContext& context, const std::string& command);

}  // namespace unit
