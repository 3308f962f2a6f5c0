#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "unit/report/report_page.h"

namespace unit {

// The paths of what --report writes to its folder for the runs of these files, the index first.
std::vector<std::string> ReportPaths(const std::string& folder, std::span<const std::string> files);

// The name of a run, by the file of its scenario or recording.
std::string RunName(const std::string& file);

// Writes the text to a file. Prints the error when it returns false.
bool WriteTextFile(const std::string& path, const std::string& text);

// The folder of --report: a page for each run, and the index. Without a folder it writes nothing.
// Prints its errors.
class ReportFiles {
  public:
    // `files` are those of the runs, in their order.
    ReportFiles(std::string folder, std::span<const std::string> files);

    bool wanted() const { return !folder_.empty(); }
    // Makes the folder; false when that fails.
    bool Open();
    void WritePage(std::size_t run, const RunReport& report);
    // Of the first runs, in their order.
    void WriteIndex(std::span<const RunResult> results);
    // False when something could not be written.
    bool complete() const { return complete_; }

  private:
    const std::string folder_;
    const std::vector<std::string> pages_;
    bool complete_ = true;
};

}  // namespace unit
