#pragma once

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

}  // namespace dvrsim
