#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "dvrsim/protocol.h"

namespace dvrsim {

// The names under which the DVR looks for an update image on its card, in this order.
inline constexpr std::string_view kImageNames[] = {"gp_cardvr_upgrade.bin", "gp_card_upgrade.bin"};

// An image begins with the line "TOLVANE DVR IMAGE <version>\n", whose version is 17 to 63
// printable characters without blanks ("14.09.01.V1.02.03"); the rest is the firmware, which the
// simulation does not look at.

// The version of the first image in the folder that can be read; empty when there is none. Files
// of any other content, size or kind are passed over.
std::optional<std::string> ReadImageVersion(const std::filesystem::path& folder);

// Creates an image, replacing one of the same name. False when the version does not fit the format
// or the file cannot be written.
bool WriteImage(const std::filesystem::path& folder, std::string_view version,
                std::string_view name = kImageNames[0]);

// The DVR's card slot: empty, or holding a folder of the host's disk as the card's content.
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
    // What is the matter with the card that is in; lasts until it is taken out.
    void SetCondition(CardStatus condition) {
        if (folder_)
            status_ = condition;
    }

    bool In() const { return folder_.has_value(); }
    CardStatus Status() const { return status_; }
    // The card's content; empty when none is in.
    std::filesystem::path Folder() const { return folder_.value_or(std::filesystem::path()); }

    // The version of the update image on the card, when there is one that can be read.
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
