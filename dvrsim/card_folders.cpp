#include "dvrsim/card_folders.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "dvrsim/storage_card.h"

namespace dvrsim {

TemporaryCard::TemporaryCard(const std::optional<std::string>& image_version) {
    std::error_code error;
    path_ = (std::filesystem::temp_directory_path(error) / "tolvane-card-XXXXXX").string();
    if (error) {
        problem_ = "the folder of temporary files: " + error.message();
        path_.clear();
    } else if (!mkdtemp(path_.data())) {
        problem_ = path_ + ": " + std::strerror(errno);
        path_.clear();
    } else if (image_version) {
        problem_ = WriteImage(path_, *image_version);
        if (problem_.empty())
            return;
        std::filesystem::remove_all(path_, error);
        path_.clear();
    }
}

TemporaryCard::~TemporaryCard() {
    std::error_code ignored;
    if (!path_.empty())
        std::filesystem::remove_all(path_, ignored);
}

const std::string& CardFolders::Make(const std::optional<std::string>& image_version) {
    static const std::string none;
    if (made_.size() == kMaxMade && !made_.contains(image_version)) {
        problem_ = "no more cards can be made; allowed are " + std::to_string(kMaxMade);
        return none;
    }
    const auto card = made_.try_emplace(image_version, image_version).first;
    if (!card->second.path().empty())
        return card->second.path();
    problem_ = card->second.problem();
    made_.erase(card);
    return none;
}

}  // namespace dvrsim
