#pragma once

#include <nlohmann/json_fwd.hpp>

#include "dvrsim/dvr.h"

namespace dvrsim {

// The complete state of the DVR. Dump it with an error handler: a version can be invalid UTF-8.
nlohmann::ordered_json StateOf(const Dvr& dvr);

}  // namespace dvrsim
