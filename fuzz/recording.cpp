// The recording reader: any file is read, or refused in one line; what was read is written as it
// was read.
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "control/protocol.h"
#include "fuzz/fuzz.h"
#include "unit/events/event_text.h"
#include "unit/recording/recording.h"

namespace {

// A file in memory with a name that the reader can open.
class MemoryFile {
  public:
    void Fill(const void* data, std::size_t size) const {
        fuzz::Check(ftruncate(descriptor_, 0) == 0 &&
                        pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size),
                    "the input can be written");
    }
    const std::string& path() const { return path_; }

  private:
    const int descriptor_ = memfd_create("fuzz", MFD_CLOEXEC);
    const std::string path_ = "/proc/self/fd/" + std::to_string(descriptor_);
};

std::optional<unit::Recording> Read(std::string_view text, std::string& problem) {
    static const MemoryFile file;
    file.Fill(text.data(), text.size());
    return unit::ReadRecording(file.path(), problem);
}

std::string Written(const unit::Recording& recording) {
    std::string text = unit::HeaderText(recording.header);
    for (const unit::RecordedEvent& recorded : recording.events)
        text += unit::TimeText(recorded.time) + " " + unit::EventLine(recorded.event) + "\n";
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using fuzz::Check;
    std::string problem;
    const auto recording = Read({reinterpret_cast<const char*>(data), size}, problem);
    Check(recording.has_value() == problem.empty(), "a refusal has a reason");
    Check(control::IsPlainText(problem), "a problem is one line of text", problem);
    if (!recording)
        return 0;
    const std::string written = Written(*recording);
    const auto again = Read(written, problem);
    Check(again.has_value(), "what is written can be read", problem + "\n" + written);
    Check(Written(*again) == written, "what was read is written as it was", written);
    return 0;
}
