#pragma once

#include <nlohmann/json_fwd.hpp>

#include "dvrsim/dvr.h"

namespace dvrsim {

// Everything about the DVR, for a dump: members in a fixed order, texts that are no UTF-8 made so.
nlohmann::ordered_json StateOf(const Dvr& dvr);

}  // namespace dvrsim
