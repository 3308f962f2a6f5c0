#include <windows.h>

#include <cstdlib>

#include "platform/kernel/kernel_state.h"

namespace {

using namespace platform::kernel;

// What a CRITICAL_SECTION's hCrit stands for, guarded by the kernel lock.
struct Section {
    const Thread* owner = nullptr;
    unsigned count = 0;
};

Section& SectionOf(LPCRITICAL_SECTION section) {
    if (!section || !section->hCrit) {
        // A genuine platform faults here as well; better loudly than on a freed lock.
        CurrentBoard().DebugOutput(
            L"kernel: critical section used before Initialize or after "
            L"Delete\r\n");
        std::abort();
    }
    return *static_cast<Section*>(section->hCrit);
}

void Take(Section& section) {
    section.owner = &CurrentThread();
    ++section.count;
}

bool IsFree(const Section& section) {
    return section.count == 0 || section.owner == &CurrentThread();
}

}  // namespace

void InitializeCriticalSection(LPCRITICAL_SECTION section) {
    *section = {};
    section->hCrit = new Section;
}

void DeleteCriticalSection(LPCRITICAL_SECTION section) {
    delete &SectionOf(section);
    section->hCrit = nullptr;
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
    SchedulingPoint();
    KernelLock lock = LockKernel();
    Section& inner = SectionOf(section);
    const Thread* self = &CurrentThread();
    Block(
        lock, [&] { return inner.count == 0 || inner.owner == self; }, kNever);
    Take(inner);
}

BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section) {
    SchedulingPoint();
    KernelLock lock = LockKernel();
    Section& inner = SectionOf(section);
    if (!IsFree(inner))
        return FALSE;
    Take(inner);
    return TRUE;
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
    SchedulingPoint();
    KernelLock lock = LockKernel();
    Section& inner = SectionOf(section);
    if (inner.count == 0 || inner.owner != &CurrentThread())
        return;
    if (--inner.count == 0)
        Wake(lock);
}
