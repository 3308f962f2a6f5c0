#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace fuzz {

// Ends the process when a promise of the code under test does not hold: libFuzzer keeps the input.
inline void Promise(bool holds, std::string_view promise, std::string_view details = {}) {
    if (holds)
        return;
    std::fprintf(stderr, "\nfuzz: a promise does not hold: %.*s\n%.*s\n",
                 static_cast<int>(promise.size()), promise.data(), static_cast<int>(details.size()),
                 details.data());
    std::abort();
}

}  // namespace fuzz
