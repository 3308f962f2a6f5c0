#pragma once

#include <windows.h>

#include <optional>

#include "serial/tty.h"

namespace platform::device {

DCB RecordOf(const serial::Settings& settings);

// Empty for what a terminal device of the host cannot do.
std::optional<serial::Settings> SettingsOf(const DCB& record);

}  // namespace platform::device
