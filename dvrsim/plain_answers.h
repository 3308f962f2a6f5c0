#pragma once

#include <string_view>

#include "dvrsim/protocol.h"

namespace dvrsim {

// The payload of the answer about an item that does not change in this simulation.
std::string_view PlainAnswer(Command command);

}  // namespace dvrsim
