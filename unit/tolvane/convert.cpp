#include "unit/tolvane/convert.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "unit/recording/recording.h"
#include "unit/tolvane/run_unit.h"
#include "unit/traces/trace_encoder.h"

namespace unit {
namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

std::string OutputOf(const CommandLine& command_line, TraceFormat format) {
    if (!command_line.convert_output.empty())
        return command_line.convert_output;
    return std::filesystem::path(command_line.convert).replace_extension(EndingOf(format)).string();
}

// What is wrong with the place of the trace; empty when nothing is.
std::string FindProblem(const std::string& recording, const std::string& output,
                        TraceFormat format) {
    const bool binary = format == TraceFormat::kPcapng;
    if (output == "-" && binary && isatty(STDOUT_FILENO) != 0)
        return "pcapng is binary and not for a terminal; allowed are --output FILE and a pipe";
    std::error_code ignored;
    if (std::filesystem::equivalent(recording, output, ignored))
        return output + ": the trace would replace its recording; allowed is another file";
    return {};
}

// False with errno set when a write failed.
bool Write(const Recording& recording, TraceFormat format, std::FILE* file) {
    const auto encoder = MakeTraceEncoder(format);
    const auto write = [file](const std::string& bytes) {
        return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    };
    const RecordingHeader& header = recording.header;
    bool written = write(encoder->Begin({header.start, header.supply, header.program}));
    for (const RecordedEvent& recorded : recording.events)
        written = written && write(encoder->Add({recorded.time, recorded.event}));
    return written && write(encoder->End()) && std::fflush(file) == 0;
}

}  // namespace

int Convert(const CommandLine& command_line) {
    const auto format = TraceFormatNamed(command_line.convert_to);
    std::string problem;
    const auto recording = ReadRecording(command_line.convert, problem);
    if (!format || !recording) {
        PrintError(problem);
        return kExitWrongUsage;
    }
    const std::string output = OutputOf(command_line, *format);
    problem = FindProblem(command_line.convert, output, *format);
    if (!problem.empty()) {
        PrintError(problem);
        return kExitWrongUsage;
    }
    const bool prints = output == "-";
    const File file(prints ? nullptr : std::fopen(output.c_str(), "we"));
    if ((prints || file) && Write(*recording, *format, prints ? stdout : file.get()))
        return EXIT_SUCCESS;
    PrintError((prints ? "standard output" : output) + ": " + std::strerror(errno));
    return kExitFailed;
}

}  // namespace unit
