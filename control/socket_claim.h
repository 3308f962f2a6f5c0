#pragma once

#include <optional>
#include <string>

#include "control/descriptor.h"
#include "control/runtime_folder.h"

namespace control {

// A listening socket of a name, held against others of the same name for as long as this lives. The
// claim of a process that died is free again at once; a living one's cannot be taken.
class SocketClaim {
  public:
    // Empty with one line in `problem`; `taken` tells that a living process has the name.
    static std::optional<SocketClaim> Make(const std::string& name, bool& taken,
                                           std::string& problem);
    SocketClaim(SocketClaim&& other) noexcept = default;
    SocketClaim& operator=(SocketClaim&&) = delete;
    ~SocketClaim();

    int listener() const { return listener_.get(); }
    std::string path() const { return folder_.path() + "/" + entry_; }

  private:
    SocketClaim(RuntimeFolder folder, std::string entry, Descriptor lock, Descriptor listener)
        : folder_(std::move(folder)),
          entry_(std::move(entry)),
          lock_(std::move(lock)),
          listener_(std::move(listener)) {}

    RuntimeFolder folder_;
    std::string entry_;
    // Locked: the host lets go of it however the process ends.
    Descriptor lock_;
    Descriptor listener_;
};

// The socket's file in the runtime folder.
std::string SocketEntry(const std::string& name);

}  // namespace control
