#include "unit/tolvane/run_replay.h"

#include <cstdlib>
#include <filesystem>

#include "unit/recording/recording_reader.h"
#include "unit/recording/replay.h"
#include "unit/tolvane/run_unit.h"

namespace unit {
namespace {

constexpr int kDiffers = 1;
constexpr int kNoRecording = 2;

void SavePicture(const Picture& picture, const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string file = folder + "/replay.png";
    std::string problem;
    Say(WritePng(picture, file, problem) ? "the replay's screen is in " + file : problem);
}

}  // namespace

int RunReplay(const CommandLine& command_line, const Program& program) {
    DebugLog log(PrintLine);
    if (!OpenLog(log, command_line))
        return kDiffers;
    std::string problem;
    const auto recording = ReadRecording(command_line.replay, problem);
    if (!recording) {
        Say(problem);
        return kNoRecording;
    }
    const ReplayResult result = Replay(*recording, program, log, Say);
    Say(ReplayReport(*recording, result));
    if (!result.difference)
        return EXIT_SUCCESS;
    if (result.screen)
        SavePicture(*result.screen,
                    command_line.screens.empty() ? "out/screens" : command_line.screens);
    return kDiffers;
}

}  // namespace unit
