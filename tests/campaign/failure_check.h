#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/kernel/call_faults.h"

namespace tests::campaign {

// A call that was made to fail, and where the program was then.
struct CallFailure {
    platform::kernel::FailedCall call;
    // The thread's calls before it, the latest first.
    std::vector<std::string_view> before;
    // How many lines the debug output had.
    std::size_t lines;
};

// What is wrong with the debug output of a program whose calls failed so, a line each: a failure
// that is not logged in its exact form, and a line of a failure in an unknown form.
std::vector<std::string> CheckLog(const std::vector<std::string>& lines,
                                  const std::vector<CallFailure>& failures);

// A line for each call that a thread repeated without a pause while it kept failing.
std::vector<std::string> CheckPace(const std::vector<CallFailure>& failures);

// Of what the unit counted after the end ("2 handles, 1 drawing objects"), that which is more than
// these failures may leave; empty when nothing is.
std::string TooMuchLeft(const std::string& leftovers, const std::vector<CallFailure>& failures);

}  // namespace tests::campaign
