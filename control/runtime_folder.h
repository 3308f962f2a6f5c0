#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "control/descriptor.h"

namespace control {

// The user's folder for the sockets of running units and DVRs: $XDG_RUNTIME_DIR/tolvane where the
// session has such a folder, else /tmp/tolvane-UID. It belongs to the user alone.
class RuntimeFolder {
  public:
    // Opens the folder, made first where it is missing. Empty with one line in `problem` when it
    // cannot be made or is not safe: a symlink, somebody else's, or open to others.
    static std::optional<RuntimeFolder> Open(std::string& problem);

    const std::string& path() const { return path_; }
    int descriptor() const { return descriptor_.get(); }

    // The path of an entry by way of the open folder: whatever is put in the folder's place
    // meanwhile, it is the checked one that is used. Short enough for any socket's address.
    std::string Inside(std::string_view entry) const;

  private:
    RuntimeFolder(std::string path, Descriptor descriptor)
        : path_(std::move(path)), descriptor_(std::move(descriptor)) {}

    std::string path_;
    Descriptor descriptor_;
};

// The names that units and DVRs may have side by side: up to 32 letters, digits, - and _.
bool IsSocketName(std::string_view name);
inline constexpr std::string_view kSocketNameAllowed =
    "up to 32 letters, digits, '-' and '_', such as bench-2";

}  // namespace control
