#include "dvrsim/card_folders.h"

#include <cstdlib>
#include <filesystem>

#include "dvrsim/storage_card.h"

namespace dvrsim {

TemporaryCard::TemporaryCard(const std::optional<std::string>& image_version) {
    std::error_code ignored;
    path_ = (std::filesystem::temp_directory_path(ignored) / "tolvane-card-XXXXXX").string();
    if (!mkdtemp(path_.data())) {
        path_.clear();
        return;
    }
    if (image_version && !WriteImage(path_, *image_version)) {
        std::filesystem::remove_all(path_, ignored);
        path_.clear();
    }
}

TemporaryCard::~TemporaryCard() {
    std::error_code ignored;
    if (!path_.empty())
        std::filesystem::remove_all(path_, ignored);
}

}  // namespace dvrsim
