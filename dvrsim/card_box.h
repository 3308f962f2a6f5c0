#pragma once

#include <map>
#include <optional>
#include <string>

#include "dvrsim/temporary_card.h"

namespace dvrsim {

// The cards that lie ready beside a DVR, as folders of the host; those made here go with the box.
class CardBox {
  public:
    // `image_card` is the folder of the card with the update image; one is made when it is empty.
    explicit CardBox(std::string image_card = {}) : image_card_(std::move(image_card)) {}

    const std::string& ImageCard() { return image_card_.empty() ? Make(kNewVersion) : image_card_; }

    // A card whose update image has that version, or that holds none; made once. Empty when it
    // cannot be made (TemporaryCard).
    const std::string& Make(const std::optional<std::string>& image_version) {
        return made_.try_emplace(image_version, image_version).first->second.path();
    }

  private:
    const std::string image_card_;
    std::map<std::optional<std::string>, TemporaryCard> made_;
};

}  // namespace dvrsim
