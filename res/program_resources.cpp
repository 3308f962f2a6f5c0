#include "res/program_resources.h"

// Defined in program_resources.S.
extern "C" const std::byte tolvane_resources_begin[];
extern "C" const std::byte tolvane_resources_end[];

namespace res {

std::span<const std::byte> ProgramResources() {
    return {tolvane_resources_begin, tolvane_resources_end};
}

}  // namespace res
