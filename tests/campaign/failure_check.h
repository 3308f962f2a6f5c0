#pragma once

#include <string>
#include <vector>

#include "platform/kernel/call_faults.h"

namespace tests::campaign {

// A call that was made to fail, and where the program was then.
struct CallFailure {
    platform::kernel::FailedCall call;
    // The thread's calls before it, the latest first, with a space after each.
    std::string before;
    // How many lines the debug output had.
    std::size_t lines;
};

// What is wrong with a program whose calls failed so, a line each: a failure that is not logged in
// its exact form, a line of a failure in an unknown form, a call that a thread repeated without a
// pause while it kept failing, and of what the unit counted after the end ("2 handles, 1 drawing
// objects") that which is more than these failures may leave.
std::vector<std::string> CheckFailures(const std::vector<std::string>& lines,
                                       const std::vector<CallFailure>& failures,
                                       const std::string& leftovers);

}  // namespace tests::campaign
