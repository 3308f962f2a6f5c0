#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace dvrsim {

// What a DVR of the simulation's default firmware is updated to.
inline constexpr char kNewVersion[] = "14.09.01.V1.02.03";

// A folder that stands for a card, with an update image in it or empty; gone with the object.
class TemporaryCard {
  public:
    explicit TemporaryCard(const std::optional<std::string>& image_version = kNewVersion);
    ~TemporaryCard();
    TemporaryCard(const TemporaryCard&) = delete;
    TemporaryCard& operator=(const TemporaryCard&) = delete;

    // Empty when the host has no room for it, or the version does not fit an image.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// The cards that lie ready beside a DVR, as folders of the host; those made here go with the box.
class CardFolders {
  public:
    // `image_card` is the folder of the card with the update image; one is made when it is empty.
    explicit CardFolders(std::string image_card = {}) : image_card_(std::move(image_card)) {}

    const std::string& ImageCard() { return image_card_.empty() ? Make(kNewVersion) : image_card_; }

    // Each is a folder of the host, so whoever asks for ever more versions gets no more of them.
    static constexpr std::size_t kMaxMade = 100;
    static constexpr char kNoSuchCard[] =
        "there can be no such card; allowed are versions of 17 to 63 characters without blanks, "
        "such as 14.09.01.V1.02.03, 100 of them in all, as far as the host has room";

    // A card whose update image has that version, or that holds none; made once. Empty when it
    // cannot be made (TemporaryCard) or the box is full.
    const std::string& Make(const std::optional<std::string>& image_version) {
        static const std::string none;
        if (made_.size() == kMaxMade && !made_.contains(image_version))
            return none;
        const auto card = made_.try_emplace(image_version, image_version).first;
        if (!card->second.path().empty())
            return card->second.path();
        made_.erase(card);
        return none;
    }

  private:
    const std::string image_card_;
    std::map<std::optional<std::string>, TemporaryCard> made_;
};

}  // namespace dvrsim
