#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "dvrsim/protocol.h"
#include "dvrsim/update_image.h"

namespace dvrsim {

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
