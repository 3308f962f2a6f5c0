#pragma once

#include <string>

namespace unit {

// A folder with an update image in it, for runs that name no card; gone with the object.
class TemporaryCard {
  public:
    TemporaryCard();
    ~TemporaryCard();
    TemporaryCard(const TemporaryCard&) = delete;
    TemporaryCard& operator=(const TemporaryCard&) = delete;

    // Empty when the host has no room for it.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace unit
