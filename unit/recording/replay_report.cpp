#include "control/words.h"
#include "unit/recording/moment_text.h"
#include "unit/recording/replay.h"

namespace unit {
namespace {

std::string Count(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Side(const char* side, std::chrono::microseconds time, const std::string& what) {
    return std::string("\n  ") + side + "  " + TimeText(time) + "  " + what;
}

}  // namespace

std::string ReplayReport(const Recording& recording, const ReplayResult& result) {
    const std::string alike =
        Count(result.outputs[0], "frame") + ", " + Count(result.outputs[1], "request") + ", " +
        Count(result.outputs[2], "broadcast") + ", " + Count(result.screens, "screen") + " alike";
    char seconds[48];
    std::snprintf(seconds, sizeof seconds, ", %.1f s of unit time",
                  static_cast<double>(result.time.count()) / 1e6);
    std::string text = recording.file;
    if (const auto& difference = result.difference) {
        if (difference->line > 0)
            text += ":" + std::to_string(difference->line);
        text += ": the replay differs in a " + difference->what + "; before it " + alike + seconds;
        text += difference->recorded.empty()
                    ? "\n  recorded  no more " + difference->what + "s"
                    : Side("recorded", difference->recorded_time, difference->recorded);
        text += difference->came.empty() ? Side("replayed", difference->time, "nothing came")
                                         : Side("replayed", difference->time, difference->came);
        text += "\n  on the screen then: " + control::JoinWords(result.screen_texts);
    } else {
        text += ": " + alike + seconds;
    }
    if (result.lateness.count() > 0)
        text += "\n  the program was up to " + std::to_string(result.lateness.count() / 1000) +
                " ms later than recorded; what it was given waited for it";
    for (const std::string& note : result.notes)
        text += "\n  " + note;
    return text;
}

}  // namespace unit
