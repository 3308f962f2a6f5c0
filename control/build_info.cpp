#include "control/build_info.h"

// CMake defines the three without quotes.
#define TOLVANE_AS_TEXT(tokens) #tokens
#define TOLVANE_TEXT(name) TOLVANE_AS_TEXT(name)

namespace control {

std::string BuildInfo() {
    return TOLVANE_TEXT(TOLVANE_VERSION) " (commit " TOLVANE_TEXT(TOLVANE_COMMIT) ", " TOLVANE_TEXT(
        TOLVANE_BUILD_TYPE) ")";
}

}  // namespace control
