#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace fuzz {

// Ends the process when the code under test breaks that rule: libFuzzer keeps the input.
inline void Check(bool holds, std::string_view rule, std::string_view details = {}) {
    if (holds)
        return;
    std::fprintf(stderr, "\nfuzz: this does not hold: %.*s\n%.*s\n", static_cast<int>(rule.size()),
                 rule.data(), static_cast<int>(details.size()), details.data());
    std::abort();
}

// Reads an input from the front; after its end every byte is 0.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

    bool AtEnd() const { return left_.empty(); }
    std::uint8_t Byte() {
        const auto byte = Bytes(1);
        return byte.empty() ? std::uint8_t{0} : byte.front();
    }
    unsigned Word() { return Byte() * 256U + Byte(); }
    // Fewer when fewer than `count` are left.
    std::vector<std::uint8_t> Bytes(std::size_t count) {
        const auto taken = left_.first(std::min(count, left_.size()));
        left_ = left_.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }
    // All that are left.
    std::vector<std::uint8_t> Rest() { return Bytes(left_.size()); }
    std::string_view Text() {
        const auto text = std::exchange(left_, {});
        return {reinterpret_cast<const char*>(text.data()), text.size()};
    }

  private:
    std::span<const std::uint8_t> left_;
};

// What each target does with an input.
void Try(Input input);

}  // namespace fuzz

// A target is one source, so this is defined once.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Try(fuzz::Input(data, size));
    return 0;
}
