#pragma once

#include <string>

#include "dvrsim/frame_codec.h"

namespace dvrsim {

// "report StorageCardStatus 01 00 2A", "request FW_Upgrade_Version query 00"
std::string TextOf(const Frame& frame);

}  // namespace dvrsim
