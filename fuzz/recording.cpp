// The recording reader: any file is read, or refused in one line; what was read is written as it
// was read.
#include <sys/mman.h>

#include <fstream>
#include <string>

#include "control/protocol.h"
#include "fuzz/fuzz.h"
#include "unit/events/event_text.h"
#include "unit/recording/recording.h"

namespace {

std::optional<unit::Recording> Read(std::string_view text, std::string& problem) {
    // A file in memory with a name that the reader can open.
    static const std::string path =
        "/proc/self/fd/" + std::to_string(memfd_create("fuzz", MFD_CLOEXEC));
    fuzz::Check(bool(std::ofstream(path) << text), "the input can be written");
    return unit::ReadRecording(path, problem);
}

std::string Written(const unit::Recording& recording) {
    std::string text = unit::HeaderText(recording.header);
    for (const unit::RecordedEvent& recorded : recording.events)
        text += unit::TimeText(recorded.time) + " " + unit::EventLine(recorded.event) + "\n";
    return text;
}

}  // namespace

void fuzz::Try(Input input) {
    std::string problem;
    const auto recording = Read(input.Text(), problem);
    Check(recording.has_value() == problem.empty(), "a refusal has a reason");
    Check(control::IsPlainText(problem), "a problem is one line of text", problem);
    if (!recording)
        return;
    const std::string written = Written(*recording);
    const auto again = Read(written, problem);
    Check(again.has_value(), "what is written can be read", problem + "\n" + written);
    Check(Written(*again) == written, "what was read is written as it was", written);
}
