#pragma once

namespace unit {

// How the command ends when it is not well.
inline constexpr int kExitFailed = 1;
inline constexpr int kExitWrongUsage = 2;

}  // namespace unit
