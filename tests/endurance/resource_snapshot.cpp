#include "tests/endurance/resource_snapshot.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tests {
namespace {

#ifdef TOLVANE_SANITIZED
// A sanitizer keeps what was freed.
constexpr std::size_t kMayGrowAllocated = 1UL << 30;
constexpr std::size_t kMayGrowResident = 1UL << 30;
#else
constexpr std::size_t kMayGrowAllocated = 256UL * 1024;
// Each real thread leaves pages of a heap of its own behind, for the next one.
constexpr std::size_t kMayGrowResident = 16UL * 1024 * 1024;
#endif

std::size_t CountOf(const char* folder) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

}  // namespace

ResourceSnapshot ResourceSnapshot::Take() {
    malloc_trim(0);
    std::size_t pages = 0;
    std::size_t resident_pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident_pages;
    return {CountOf("/proc/self/task"), CountOf("/proc/self/fd"), mallinfo2().uordblks,
            resident_pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE))};
}

std::string ResourceSnapshot::Text() const {
    char text[128];
    std::snprintf(text, sizeof text,
                  "%zu threads, %zu descriptors, %.2f MiB allocated, %.1f MiB resident", threads,
                  descriptors, static_cast<double>(allocated) / (1 << 20),
                  static_cast<double>(resident) / (1 << 20));
    return text;
}

std::string Growth(const ResourceSnapshot& before, const ResourceSnapshot& after) {
    const bool grown = after.threads > before.threads || after.descriptors > before.descriptors ||
                       after.allocated > before.allocated + kMayGrowAllocated ||
                       after.resident > before.resident + kMayGrowResident;
    return grown ? "from " + before.Text() + "\nto   " + after.Text() : "";
}

}  // namespace tests
