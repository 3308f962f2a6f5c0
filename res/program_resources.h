#pragma once

#include <cstddef>
#include <span>

namespace res {

// The program's compiled resources (.res), part of the executable. Any thread.
std::span<const std::byte> ProgramResources();

}  // namespace res
