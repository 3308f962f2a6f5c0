#include "unit/tolvane/run_replay.h"

#include <cstdlib>
#include <filesystem>

#include "unit/recording/recording_reader.h"
#include "unit/recording/replay.h"

namespace unit {
namespace {

constexpr int kDiffers = 1;

void SavePicture(const Picture& picture, const std::string& folder,
                 const std::function<void(const std::string&)>& say) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string file = folder + "/replay.png";
    std::string problem;
    say(WritePng(picture, file, problem) ? "the replay's screen is in " + file : problem);
}

}  // namespace

int RunReplay(const CommandLine& command_line, const Program& program, DebugLog& log,
              const std::function<void(const std::string&)>& say) {
    std::string problem;
    const auto recording = ReadRecording(command_line.replay, problem);
    if (!recording) {
        say(problem);
        return kDiffers;
    }
    const ReplayResult result = Replay(*recording, program, log, say);
    say(ReplayReport(*recording, result));
    if (!result.difference)
        return EXIT_SUCCESS;
    if (result.screen)
        SavePicture(*result.screen,
                    command_line.screens.empty() ? "out/screens" : command_line.screens, say);
    return kDiffers;
}

}  // namespace unit
