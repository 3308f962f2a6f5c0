// thread_local variables. Windows CE's loader prepares none for an executable, so the compiler
// calls a function for the address of each.
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "windows/ce/runtime/fatal.h"

namespace {

// What the compiler emits for each variable.
struct ThreadLocal {
    std::size_t size;
    std::size_t alignment;
    std::atomic<DWORD> slot_plus_1;  // 0 until a thread has used the variable
    const void* initial;             // null for zeros
};
static_assert(sizeof(ThreadLocal) == 16);

DWORD SlotOf(ThreadLocal& variable) {
    if (const DWORD known = variable.slot_plus_1)
        return known - 1;
    const DWORD slot = TlsAlloc();
    if (slot == TLS_OUT_OF_INDEXES)
        EndProcess("no slot for a thread_local variable");
    DWORD other = 0;
    if (variable.slot_plus_1.compare_exchange_strong(other, slot + 1))
        return slot;
    TlsFree(slot);
    return other - 1;
}

void* MakeInstance(const ThreadLocal& variable) {
    void* const instance = std::malloc(variable.size);
    if (instance == nullptr)
        EndProcess("out of memory");
    if (variable.initial != nullptr)
        std::memcpy(instance, variable.initial, variable.size);
    else
        std::memset(instance, 0, variable.size);
    return instance;
}

}  // namespace

// The calling thread's instance of the variable.
extern "C" void* __emutls_get_address(ThreadLocal* variable) {
    const DWORD slot = SlotOf(*variable);
    if (void* const instance = TlsGetValue(slot))
        return instance;
    void* const instance = MakeInstance(*variable);
    TlsSetValue(slot, instance);
    return instance;
}

// Windows CE calls no executable at the end of a thread, so that no destructor runs then. The
// program's only thread with such variables ends with the process, which frees its memory.
extern "C" int __cxa_thread_atexit(void (*)(void*), void*, void*) {
    return 0;
}

extern "C" void* const __dso_handle = nullptr;
