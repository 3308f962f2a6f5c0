#include "unit/scenario/reference.h"

#include <cctype>
#include <set>

#include "unit/commands/unit_commands.h"
#include "unit/scenario/language.h"

namespace unit {
namespace {

constexpr char kIntroduction[] = R"(# Scenarios

A scenario is a text file that says what is done to the unit and what is to come of it, one command
a line:

    tap "Power On"
    wait button OK within 5s
    power off
    expect text "本体に外部電源を接続して下さい。" within 1s

Run it with

    tolvane --scenario FILE ...

It runs in simulated time, where a minute of the unit takes a fraction of a second and the same seed
gives the same run to the byte; with `--speed N` or `--window` on the host's clock. With a real DVR
(`--com9 /dev/ttyUSB0`) the person at the desk is told when the card is to be moved.

All lines of all files are checked before anything runs. A line that is not in order is told with
file, line and what is allowed, and the exit status is 2. A scenario that runs ends with 0 when it
passed. Otherwise the exit status is 1, the line that failed is told with what stands on the screen,
and the folder `out/NAME` (another with `--out`) takes the message with the seed, the unit's state,
the screen, the debug output, and everything else that happened at the unit's edges.

Words are divided by blanks; a text with blanks, quotes or a `#` goes in quotes: `"..."`, in which
`\"` and `\\` stand for those characters, or `'...'`, in which nothing is special. From a `#` at the
beginning of a word on, a line is a comment. Paths of files and folders start from the scenario's own
folder.

In the tables below words in small letters stand for themselves, `|` divides words to choose from,
`[ ]` encloses what may be left out, and words in capitals stand for values:
)";

constexpr char kChecks[] = R"(
## Waiting and expecting

| command | |
|---|---|
| `wait DURATION` | Lets that much of the unit's time pass. |
| `wait [no] STATE [within LIMIT]` | Goes on once it is so; fails after the limit, 30 s unless told. |
| `expect [no] STATE [within LIMIT]` | It is so now, or comes to be so within the limit. |
| `expect [no] STATE for DURATION` | It is so from now on for that long. |
| `wait HAPPENING [times COUNT] [within LIMIT]` | Goes on once it has happened (so often). Reads on behind what the last wait for the same kind of happening has found, so that nothing is missed that came between two commands, and the order of several waits is the order of what came. |
| `expect HAPPENING [times COUNT] [within LIMIT]` | It has happened (so often at least) since the scenario began or since the last `forget`, or does so within the limit. |
| `expect no HAPPENING` | It has not happened since then. |
| `expect no HAPPENING for DURATION` | It does not happen from now on for that long. |
| `forget` | What has happened so far is not looked at by the conditions that follow. |

States are looked at every 5 ms of the unit's time, or of the host's when the unit runs faster.
)";

constexpr char kExample[] = R"(
## An example in full

The scenario that `tolvane --auto` runs, the whole update as a driver does it:

)";

// A cell of a table; | divides its columns.
std::string Cell(std::string_view text) {
    std::string cell;
    for (const char character : text)
        cell += character == '|' ? "\\|" : std::string(1, character);
    return cell;
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
        text_ += std::string("\n### ") + (states ? "States" : "Happenings") +
                 "\n\n| condition | what it asks |\n|---|---|\n";
        for (const Condition& condition : Conditions())
            if (condition.IsState() == states)
                AddRow(condition.pattern, condition.help);
    }

    void AddText(std::string_view text) { text_ += text; }

    const std::string& text() const { return text_; }

    // A row for each value that the patterns had.
    std::string Placeholders() const {
        std::string table = "\n| value | what it is |\n|---|---|\n";
        for (const std::string& name : placeholders_)
            table += "| `" + name + "` | " + Cell(control::FindPlaceholder(name)->allowed) + " |\n";
        return table;
    }

  private:
    void AddRow(std::string_view pattern, std::string_view help) {
        text_ += "| `" + Cell(pattern) + "` | " + Cell(help) + " |\n";
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
    tables.Add("What holds from the start, before the first other command", SettingRows());
    tables.Add("Files and repetitions", StructureRows());
    tables.Add("What can be done to the unit", UnitCommands().rows());
    tables.AddText(kChecks);
    tables.AddConditions(true);
    tables.AddConditions(false);
    tables.Add("Pictures and messages", PictureRows());
    return kIntroduction + tables.Placeholders() + tables.text() + kExample + Indented(example);
}

}  // namespace unit
