#pragma once

#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "windows/ce/emulator/image_file.h"

namespace ce {

inline constexpr std::uint32_t kPageBytes = 0x1000;

// The address of what the program points to: its memory has the same addresses in this process.
template <typename Object = void>
Object* At(Address address) {
    return reinterpret_cast<Object*>(std::uintptr_t{address});
}

inline Address AddressOf(const void* object) {
    return static_cast<Address>(reinterpret_cast<std::uintptr_t>(object));
}

// The address space of one process of the unit, with the executable in it. Any thread.
class Memory {
  public:
    struct Region {
        Address address;
        std::size_t bytes;
        bool writable;
        bool executable;
    };

    ~Memory();

    // Reserves the addresses. Once. False with one line in `problem`.
    bool Reserve(const ImageFile& image, std::string& problem);
    // Puts the executable into the memory as the loader does, and empties the heap. While no thread
    // of the program runs.
    void Load(const ImageFile& image);

    const std::vector<Region>& regions() const { return regions_; }

    // Aligned to 8 bytes, not zeroed; 0 when there is no more.
    Address Allocate(std::uint32_t bytes);
    // 0 is ignored.
    void Free(Address block);

  private:
    bool Map(const Region& region, std::string& problem);

    std::vector<Region> regions_;
    std::mutex mutex_;
    Address heap_end_ = 0;                               // of what has ever been used
    std::map<Address, std::uint32_t> sizes_;             // of the blocks in use
    std::multimap<std::uint32_t, Address> free_blocks_;  // by size
};

}  // namespace ce
