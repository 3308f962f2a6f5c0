#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace fuzz {

// Takes an input apart from the front; behind its end everything is 0.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

    bool AtEnd() const { return left_.empty(); }

    std::uint8_t Byte() {
        const auto byte = Bytes(1);
        return byte.empty() ? std::uint8_t{0} : byte.front();
    }
    unsigned Word() { return Byte() * 256U + Byte(); }
    // As many as there are of `count`.
    std::vector<std::uint8_t> Bytes(std::size_t count) {
        const auto taken = left_.first(std::min(count, left_.size()));
        left_ = left_.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }
    // All that are left, as they are.
    std::string_view Text() {
        const auto text = std::exchange(left_, {});
        return {reinterpret_cast<const char*>(text.data()), text.size()};
    }

  private:
    std::span<const std::uint8_t> left_;
};

}  // namespace fuzz
