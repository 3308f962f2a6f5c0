#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/kernel/call_faults.h"

namespace tests::campaign {

// A call that was made to fail, and where the program stood then.
struct FailureSeen {
    platform::kernel::FailedCall call;
    // The thread's calls before it, the latest first.
    std::vector<std::string_view> before;
    // How many lines the debug output had.
    std::size_t lines;
};

// What is wrong with the debug output of a program whose calls failed so, a line each: a failure
// that is not told, or not in its exact form; and a line of a failure in a form that there is none.
std::vector<std::string> CheckLog(const std::vector<std::string>& lines,
                                  const std::vector<FailureSeen>& failures);

// Of what the unit counted after the end ("2 handles, 1 drawing objects"), that which is more than
// these may leave; empty when nothing is.
std::string TooMuchLeft(const std::string& leftovers, const std::vector<FailureSeen>& failures);

}  // namespace tests::campaign
