#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "dvrsim/protocol.h"

namespace dvrsim {

// The file names of an update image, in the order in which the DVR looks for them on its card.
inline constexpr std::string_view kImageNames[] = {"gp_cardvr_upgrade.bin", "gp_card_upgrade.bin"};

// An image begins with the line "TOLVANE DVR IMAGE <version>\n". The version is 17 to 63 printable
// characters without spaces ("14.09.01.V1.02.03"). The rest is the firmware, which the simulation
// ignores.

// The version of the first valid image in the folder, if there is one. Ignores everything that is
// not a valid image.
std::optional<std::string> ReadImageVersion(const std::filesystem::path& folder);

// Creates an image and replaces one of the same name. Returns the problem in one line, or an empty
// text.
std::string WriteImage(const std::filesystem::path& folder, std::string_view version,
                       std::string_view name = kImageNames[0]);

// The DVR's card slot: empty, or with a folder of the host as the content of the card.
class StorageCard {
  public:
    void Insert(std::filesystem::path folder) {
        folder_ = std::move(folder);
        status_ = CardStatus::kPlugIn;
    }
    void Remove() {
        folder_.reset();
        status_ = CardStatus::kPlugOut;
    }
    // Sets the condition of the card in the slot until it is removed. An empty slot ignores it.
    void SetCondition(CardStatus condition) {
        if (folder_)
            status_ = condition;
    }

    bool In() const { return folder_.has_value(); }
    CardStatus Status() const { return status_; }
    // The folder of the card; empty if the slot is empty.
    std::filesystem::path Folder() const { return folder_.value_or(std::filesystem::path()); }

    // The version of the update image, if there is one and the card is readable.
    std::optional<std::string> ImageVersion() const {
        if (!folder_ || status_ == CardStatus::kBroken || status_ == CardStatus::kFormatting)
            return std::nullopt;
        return ReadImageVersion(*folder_);
    }

  private:
    std::optional<std::filesystem::path> folder_;
    CardStatus status_ = CardStatus::kPlugOut;
};

}  // namespace dvrsim
