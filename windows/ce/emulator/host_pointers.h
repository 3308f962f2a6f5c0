#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ce {

// Parameters of messages that point to records of the platform. The program gets a number for one,
// which is no address of its memory; it can do nothing with it but pass it on to DefWindowProcW. Of
// the calling thread.
class HostPointer {
  public:
    // Valid while the object exists.
    explicit HostPointer(std::intptr_t parameter) : number_(static_cast<std::uint32_t>(parameter)) {
        const bool is_number = parameter == static_cast<std::int32_t>(parameter);
        is_pointer_ = !is_number;
        if (!is_pointer_)
            return;
        number_ = kFirst + static_cast<std::uint32_t>(t_pointers.size());
        t_pointers.push_back(parameter);
    }
    HostPointer(const HostPointer&) = delete;
    HostPointer& operator=(const HostPointer&) = delete;
    ~HostPointer() {
        if (is_pointer_)
            t_pointers.pop_back();
    }

    std::uint32_t number() const { return number_; }

    // The parameter that the program got this number for.
    static std::intptr_t Parameter(std::uint32_t number) {
        const std::size_t index = number - kFirst;
        return index < t_pointers.size() ? t_pointers[index] : static_cast<std::int32_t>(number);
    }

  private:
    // Among the addresses of the kernel.
    static constexpr std::uint32_t kFirst = 0xF7000000;
    static inline thread_local std::vector<std::intptr_t> t_pointers;

    std::uint32_t number_;
    bool is_pointer_;
};

}  // namespace ce
