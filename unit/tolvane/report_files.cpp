#include "unit/tolvane/report_files.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "unit/tolvane/run_unit.h"

namespace unit {
namespace {

std::vector<std::string> NamesOf(std::span<const std::string> files) {
    std::vector<std::string> names;
    for (const std::string& file : files)
        names.push_back(RunName(file));
    return names;
}

}  // namespace

std::string RunName(const std::string& file) {
    return std::filesystem::path(file).stem().string();
}

std::vector<std::string> ReportPaths(const std::string& folder,
                                     std::span<const std::string> files) {
    std::vector<std::string> paths = PageNames(NamesOf(files));
    paths.insert(paths.begin(), kIndexPage);
    for (std::string& path : paths)
        path.insert(0, folder + "/");
    return paths;
}

bool WriteTextFile(const std::string& path, const std::string& text) {
    errno = 0;
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        PrintError(path + ": " + std::strerror(errno));
    return !stream.fail();
}

ReportFiles::ReportFiles(std::string folder, std::span<const std::string> files)
    : folder_(std::move(folder)), pages_(PageNames(NamesOf(files))) {}

bool ReportFiles::Open() {
    std::error_code error;
    if (wanted())
        std::filesystem::create_directories(folder_, error);
    if (error)
        PrintError(folder_ + ": " + error.message());
    complete_ = !error;
    return complete_;
}

void ReportFiles::WritePage(std::size_t run, const RunReport& report) {
    if (wanted() && !WriteTextFile(folder_ + "/" + pages_[run], ReportPage(report)))
        complete_ = false;
}

void ReportFiles::WriteIndex(std::span<const RunResult> results) {
    if (wanted() && !WriteTextFile(folder_ + "/" + kIndexPage, ReportIndex(results, pages_)))
        complete_ = false;
}

}  // namespace unit
