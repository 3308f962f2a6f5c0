// Allocation on the C library's heap, whose blocks are aligned for every type.
#include <cstdlib>
#include <new>

#include "windows/ce/runtime/fatal.h"

const std::nothrow_t std::nothrow{};

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}

// Cannot throw: a process that cannot go on without the memory ends.
void* operator new(std::size_t size) {
    void* const block = operator new(size, std::nothrow);
    if (block == nullptr)
        EndProcess("out of memory");
    return block;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

void operator delete[](void* block) noexcept {
    std::free(block);
}
