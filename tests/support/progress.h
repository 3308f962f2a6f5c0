#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace tests {

// Reports to tools/progress that so many more cases are done, if a command of tools/ wants that:
// its variable has the descriptor.
inline void ReportProgress(std::uint64_t done, std::uint64_t findings = 0) {
    const char* const descriptor = std::getenv("TOLVANE_PROGRESS");
    if (!descriptor)
        return;
    const std::string line =
        "PROGRESS " + std::to_string(done) + " " + std::to_string(findings) + "\n";
    [[maybe_unused]] const ssize_t written = write(std::atoi(descriptor), line.data(), line.size());
}

}  // namespace tests
