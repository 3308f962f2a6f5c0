#pragma once

#include <string>

namespace dvrsim {

// A symlink at a path that stays the same from run to run; gone with the object, if it still is
// this one.
class PathLink {
  public:
    PathLink() = default;
    PathLink(const PathLink&) = delete;
    PathLink& operator=(const PathLink&) = delete;
    ~PathLink();

    // Replaces a symlink that is there. False with one line in `problem` when anything else is, or
    // the link cannot be made. Once.
    bool Make(const std::string& path, const std::string& target, std::string& problem);

  private:
    std::string path_;
    std::string target_;
};

}  // namespace dvrsim
