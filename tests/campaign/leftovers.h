#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tests::campaign {

// Of what the unit counted after the end ("2 handles, 1 drawing objects"), that which is more than
// calls of these names may leave when they fail; empty when nothing is.
std::string TooMuchLeft(const std::string& leftovers,
                        const std::vector<std::string_view>& failed_calls);

}  // namespace tests::campaign
