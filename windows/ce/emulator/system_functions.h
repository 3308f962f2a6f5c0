#pragma once

#include <string_view>

#include "windows/ce/emulator/processor.h"

namespace ce {

// The function of the system with this name; null when there is none.
SystemFunction FindSystemFunction(std::string_view name);

// Functions whose arguments are records that differ on the host, texts that are written, formats,
// or the program's own functions; those of the C library and of the runtime. In
// system_functions.cpp is the table of all.
namespace record {
SystemFunction Find(std::string_view name);
}
namespace runtime {
SystemFunction Find(std::string_view name);
}

}  // namespace ce
