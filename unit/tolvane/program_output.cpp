#include "unit/tolvane/program_output.h"

#include "control/protocol.h"

namespace unit {

ProgramOutput::ProgramOutput(std::function<void(const std::string& line)> take)
    : take_(std::move(take)),
      before_(stdout),
      stream_(fopencookie(this, "w", {nullptr, Write, nullptr, nullptr})) {
    if (!stream_)
        return;
    std::setvbuf(stream_, nullptr, _IOLBF, BUFSIZ);
    stdout = stream_;
}

ProgramOutput::~ProgramOutput() {
    if (!stream_)
        return;
    stdout = before_;
    std::fclose(stream_);
}

// The stream is locked meanwhile, so one thread at a time gets here.
ssize_t ProgramOutput::Write(void* self, const char* text, size_t size) {
    auto& output = *static_cast<ProgramOutput*>(self);
    output.unfinished_.append(text, size);
    const std::size_t end = output.unfinished_.rfind('\n') + 1;
    control::ForEachLine(std::string_view(output.unfinished_).substr(0, end),
                         [&](std::string_view line) { output.take_(std::string(line)); });
    output.unfinished_.erase(0, end);
    return static_cast<ssize_t>(size);
}

}  // namespace unit
