#pragma once

#include <cstdint>
#include <cstdlib>

namespace tests {

// A number that a command of tools/ hands over.
inline std::uint64_t NumberFrom(const char* variable, std::uint64_t usual) {
    const char* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 10) : usual;
}

}  // namespace tests
