#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "dvrsim/protocol.h"

namespace dvrsim {

// The protocol's name of a command ("StorageCardStatus"), its query form included; empty for a code
// that is none.
std::string_view CommandName(std::uint16_t code);

// The command of that name, letters' case ignored.
std::optional<Command> CommandNamed(std::string_view name);

}  // namespace dvrsim
