#include "windows/ce/emulator/memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ce {
namespace {

constexpr Address kHeap = 0x01000000;
constexpr std::uint32_t kHeapBytes = 0x02000000;

// What blocks contain that the program has not written, or has given back: no valid pointer.
constexpr int kFresh = 0xCD;
constexpr int kFreed = 0xDD;

std::uint32_t RoundUp(std::uint32_t bytes, std::uint32_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

}  // namespace

Memory::~Memory() {
    for (const Region& region : regions_)
        munmap(At(region.address), region.bytes);
}

bool Memory::Reserve(const ImageFile& image, std::string& problem) {
    for (const ImageFile::Section& section : image.sections)
        if (!Map({section.address, RoundUp(section.bytes, kPageBytes), section.writable,
                  section.executable},
                 problem))
            return false;
    return Map({kHeap, kHeapBytes, true, false}, problem);
}

bool Memory::Map(const Region& region, std::string& problem) {
    void* const mapped = mmap(At(region.address), region.bytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
    if (mapped == MAP_FAILED) {
        problem = "the program's addresses cannot be reserved on this host: ";
        problem += std::strerror(errno);
        return false;
    }
    regions_.push_back(region);
    return true;
}

void Memory::Load(const ImageFile& image) {
    const std::scoped_lock lock(mutex_);
    for (const ImageFile::Section& section : image.sections) {
        std::memset(At(section.address), 0, section.bytes);
        std::memcpy(At(section.address), section.contents.data(), section.contents.size());
    }
    heap_end_ = kHeap;
    sizes_.clear();
    free_blocks_.clear();
}

Address Memory::Allocate(std::uint32_t bytes) {
    const std::scoped_lock lock(mutex_);
    const std::uint32_t size = RoundUp(std::max(bytes, 1U), 8);
    Address block = heap_end_;
    if (const auto reused = free_blocks_.find(size); reused != free_blocks_.end()) {
        block = reused->second;
        free_blocks_.erase(reused);
    } else if (size > kHeap + kHeapBytes - heap_end_) {
        return 0;
    } else {
        heap_end_ += size;
    }
    std::memset(At(block), kFresh, size);
    sizes_.emplace(block, size);
    return block;
}

void Memory::Free(Address block) {
    const std::scoped_lock lock(mutex_);
    const auto used = sizes_.find(block);
    if (used == sizes_.end())
        return;
    std::memset(At(block), kFreed, used->second);
    free_blocks_.emplace(used->second, block);
    sizes_.erase(used);
}

}  // namespace ce
