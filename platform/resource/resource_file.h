#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/resource/resource_name.h"

namespace platform::resource {

struct Resource {
    ResourceName type;
    ResourceName name;
    std::span<const std::byte> data;
};

// The resources of a compiled script (.res), in its order. `data` points into `file`. Nothing when
// it is damaged; `problem` then names the byte and the reason. Any input is safe.
std::optional<std::vector<Resource>> ReadResourceFile(std::span<const std::byte> file,
                                                      std::string& problem);

}  // namespace platform::resource
