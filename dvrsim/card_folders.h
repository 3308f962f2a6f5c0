#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace dvrsim {

// The version of the default update image, newer than the DVR's default firmware.
inline constexpr char kNewVersion[] = "14.09.01.V1.02.03";

// A temporary folder that acts as a card, with an update image in it or empty. The destructor
// removes it.
class TemporaryCard {
  public:
    explicit TemporaryCard(const std::optional<std::string>& image_version = kNewVersion);
    ~TemporaryCard();
    TemporaryCard(const TemporaryCard&) = delete;
    TemporaryCard& operator=(const TemporaryCard&) = delete;

    // Empty if the host could not create it, or if the version does not fit an image.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// The cards that can be put into a DVR, as folders of the host. Removes those that it created.
class CardFolders {
  public:
    // `image_card` is the folder of the card with the update image; empty creates one.
    explicit CardFolders(std::string image_card = {}) : image_card_(std::move(image_card)) {}

    const std::string& ImageCard() { return image_card_.empty() ? Make(kNewVersion) : image_card_; }

    // Bounds the folders on the host.
    static constexpr std::size_t kMaxMade = 100;
    static constexpr char kNoSuchCard[] =
        "the card cannot be made; allowed are versions of 17 to 63 characters without spaces, "
        "such as 14.09.01.V1.02.03, 100 of them in all, if the host has room";

    // Returns the folder of a card whose update image has that version, or of a card without an
    // image; creates it at the first call. Empty if that fails (TemporaryCard) or at kMaxMade.
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
