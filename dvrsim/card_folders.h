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

    // Empty if it could not be made; `problem` says why, in one line.
    const std::string& path() const { return path_; }
    const std::string& problem() const { return problem_; }

  private:
    std::string path_;
    std::string problem_;
};

// The cards that can be put into a DVR, as folders of the host. Removes those that it created.
class CardFolders {
  public:
    // `image_card` is the folder of the card with the update image; empty creates one.
    explicit CardFolders(std::string image_card = {}) : image_card_(std::move(image_card)) {}

    const std::string& ImageCard() { return image_card_.empty() ? Make(kNewVersion) : image_card_; }

    // Bounds the folders on the host.
    static constexpr std::size_t kMaxMade = 100;

    // Returns the folder of a card whose update image has that version, or of a card without an
    // image; creates it at the first call. Empty if that fails.
    const std::string& Make(const std::optional<std::string>& image_version);
    // Why the last card could not be made, in one line.
    const std::string& problem() const { return problem_; }

  private:
    const std::string image_card_;
    std::map<std::optional<std::string>, TemporaryCard> made_;
    std::string problem_;
};

}  // namespace dvrsim
