#include "unit/scenario/reference.h"

#include <cctype>
#include <set>

#include "unit/commands/unit_commands.h"
#include "unit/scenario/language.h"

namespace unit {
namespace {

constexpr char kIntroduction[] = R"(# Scenarios

A scenario is a text file that says what is done to the unit and what must happen, one command a
line:

    wait button "Power On"
    tap "Power On"
    wait button OK within 5s
    tap OK
    power off
    expect text "本体に外部電源を接続して下さい。" within 1s

Run it with

    tolvane --scenario FILE ...

By default it runs in simulated time: a minute of the unit takes a fraction of a second, and the same
seed gives the same run to the byte. With `--speed N` or `--window` it runs on the host's clock. With
a real DVR (`--com9 /dev/ttyUSB0`) the command asks the operator to move the card.

All lines of all files are checked before anything runs. For each wrong line the command prints the
file, the line and what is allowed, and ends with status 2. A scenario that passes ends with 0. When
a scenario fails, the command prints the line that failed and the texts on the screen, ends with
status 1, and saves in the folder `out/NAME` (change it with `--out`) the message with the seed, the
unit's state, the screen, the debug output, and all events at the unit's external interfaces.

Words are separated by spaces. A text with spaces, quotes or a `#` is written in quotes: `"..."`, in
which `\"` and `\\` stand for those characters, or `'...'`, in which no character is special. A `#`
at the beginning of a word begins a comment. Relative paths of files and folders start from the
scenario's own folder.

In the tables below, words in lower case stand for themselves, `|` separates alternatives, `[ ]`
encloses optional words, and words in upper case stand for values:
)";

constexpr char kChecks[] = R"(
## Waiting and expecting

| command | |
|---|---|
| `wait DURATION` | Waits for that much of the unit's time. |
| `wait [no] STATE [within LIMIT]` | Continues as soon as the state holds; fails at the limit, by default 30 s. |
| `expect [no] STATE [within LIMIT]` | The state holds now, or begins to hold within the limit. |
| `expect [no] STATE for DURATION` | The state holds from now on for that time. |
| `wait EVENT [times COUNT] [within LIMIT]` | Continues as soon as the event has happened (that many times). Searches on after the event that the last wait for the same kind has found: nothing is missed that happens between two commands, and several waits must be fulfilled in their order. |
| `expect EVENT [times COUNT] [within LIMIT]` | The event has happened (at least that many times) since the scenario began or since the last `forget`, or happens within the limit. |
| `expect no EVENT` | The event has not happened since then. |
| `expect no EVENT for DURATION` | The event does not happen from now on for that time. |
| `forget` | The conditions that follow ignore the events so far. |

The poll interval for states is 5 ms of the unit's time, or of the host's if the unit runs faster.
Limits are times of the unit; for a unit that runs N times as fast as the host they are N times as long,
so that a busy host has the same time at any speed.
)";

constexpr char kExample[] = R"(
## A complete example

The scenario that `tolvane --auto` runs, the whole update as a driver does it:

)";

// The text of a table entry, in which | would separate columns.
std::string Entry(std::string_view text) {
    std::string entry;
    for (const char character : text)
        entry += character == '|' ? "\\|" : std::string(1, character);
    return entry;
}

class Tables {
  public:
    template <class Rows>
    void Add(std::string_view title, const Rows& rows) {
        text_ += "\n## " + std::string(title) + "\n\n| command | what it does |\n|---|---|\n";
        for (const auto& row : rows)
            AddRow(row.pattern, row.help);
    }

    void AddConditions(bool states) {
        text_ += std::string("\n### ") + (states ? "States" : "Events") +
                 "\n\n| condition | when it holds |\n|---|---|\n";
        for (const Condition& condition : Conditions())
            if (condition.IsState() == states)
                AddRow(condition.pattern, condition.help);
    }

    void AddText(std::string_view text) { text_ += text; }

    const std::string& text() const { return text_; }

    // A row for each kind of value in the patterns.
    std::string Placeholders() const {
        std::string table = "\n| value | what it is |\n|---|---|\n";
        for (const std::string& name : placeholders_)
            table +=
                "| `" + name + "` | " + Entry(control::FindPlaceholder(name)->allowed) + " |\n";
        return table;
    }

  private:
    void AddRow(std::string_view pattern, std::string_view help) {
        text_ += "| `" + Entry(pattern) + "` | " + Entry(help) + " |\n";
        std::string word;
        for (const char character : std::string(pattern) + " ") {
            const auto letter = static_cast<unsigned char>(character);
            if (std::isupper(letter) != 0 || (character == '-' && !word.empty())) {
                word += character;
                continue;
            }
            if (control::FindPlaceholder(word))
                placeholders_.insert(word);
            word.clear();
        }
    }

    std::string text_;
    std::set<std::string> placeholders_{"DURATION", "LIMIT", "COUNT"};
};

std::string Indented(std::string_view text) {
    std::string lines;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        if (to > from)
            lines += "    " + std::string(text.substr(from, to - from));
        lines += "\n";
        from = to + 1;
    }
    return lines;
}

}  // namespace

std::string ScenarioReference(std::string_view example) {
    Tables tables;
    tables.Add("Settings, before the first command", SettingRows());
    tables.Add("Included files and repetitions", StructureRows());
    tables.Add("Commands for the unit", UnitCommands().rows());
    tables.AddText(kChecks);
    tables.AddConditions(true);
    tables.AddConditions(false);
    tables.Add("Pictures and messages", PictureRows());
    return kIntroduction + tables.Placeholders() + tables.text() + kExample + Indented(example);
}

}  // namespace unit
