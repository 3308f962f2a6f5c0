#include "unit/board/temporary_card.h"

#include <cstdlib>
#include <filesystem>

#include "dvrsim/update_image.h"

namespace unit {
namespace {

// What a DVR of the simulation's default firmware is updated to.
constexpr const char kImageVersion[] = "14.09.01.V1.02.03";

}  // namespace

TemporaryCard::TemporaryCard() {
    std::error_code ignored;
    std::string folder =
        (std::filesystem::temp_directory_path(ignored) / "tolvane-card-XXXXXX").string();
    if (mkdtemp(folder.data()) && dvrsim::WriteImage(folder, kImageVersion))
        path_ = folder;
}

TemporaryCard::~TemporaryCard() {
    std::error_code ignored;
    if (!path_.empty())
        std::filesystem::remove_all(path_, ignored);
}

}  // namespace unit
