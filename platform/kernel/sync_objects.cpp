#include <windows.h>

#include <cstdlib>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel_state.h"
#include "platform/kernel/named_objects.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {
namespace {

class Event final : public Object {
  public:
    Event(bool manual_reset, bool signalled) : manual_reset_(manual_reset), signalled_(signalled) {}

    NamedKind Kind() const override { return NamedKind::kEvent; }
    bool Waitable() const override { return true; }
    bool Signalled(const Thread&) const override { return signalled_; }
    bool Consume(Thread&) override {
        if (!manual_reset_)
            signalled_ = false;
        return false;
    }
    void Set() { signalled_ = true; }

  private:
    const bool manual_reset_;
    bool signalled_;
};

// There is no ReleaseMutex: a mutex is free again when its owner thread has ended.
class Mutex final : public Object {
  public:
    NamedKind Kind() const override { return NamedKind::kMutex; }
    bool Waitable() const override { return true; }

    bool Signalled(const Thread& waiter) const override {
        const std::shared_ptr<Thread> owner = owner_.lock();
        return !taken_ || !owner || owner->ended || owner.get() == &waiter;
    }

    bool Consume(Thread&) override {
        const std::shared_ptr<Thread> self = CurrentThreadShared();
        const bool abandoned = taken_ && owner_.lock() != self;
        taken_ = true;
        owner_ = self;
        return abandoned;
    }

  private:
    std::weak_ptr<Thread> owner_;
    bool taken_ = false;
};

// The content of a CRITICAL_SECTION's hCrit; guarded by the kernel lock.
struct Section {
    const Thread* owner = nullptr;
    unsigned count = 0;
};

Section& SectionOf(LPCRITICAL_SECTION section) {
    if (!section || !section->hCrit) {
        // A genuine platform faults here too.
        CurrentBoard().DebugOutput(
            L"kernel: critical section used before Initialize or after Delete\r\n");
        std::abort();
    }
    return *static_cast<Section*>(section->hCrit);
}

}  // namespace
}  // namespace platform::kernel

using namespace platform::kernel;

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
    const ApiCall call("CreateEventW");
    if (call.Fails())
        return nullptr;
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> event = CreateNamed(lock, name, NamedKind::kEvent, [&] {
        return std::make_shared<Event>(manual_reset != 0, initial_state != 0);
    });
    return event ? OpenHandle(lock, std::move(event)) : nullptr;
}

HANDLE OpenEventW(DWORD, BOOL, LPCWSTR name) {
    const ApiCall call("OpenEventW");
    if (call.Fails())
        return nullptr;
    if (!name) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> event = FindNamedAnywhere(lock, name);
    if (!event || event->Kind() != NamedKind::kEvent) {
        SetLastError(event ? ERROR_INVALID_HANDLE : ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    return OpenHandle(lock, std::move(event));
}

BOOL SetEvent(HANDLE handle) {
    const ApiCall call("SetEvent");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Event> event = FindObjectAs<Event>(handle);
    if (!event)
        return FALSE;
    KernelLock lock = LockKernel();
    event->Set();
    Wake(lock);
    return TRUE;
}

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initial_owner, LPCWSTR name) {
    const ApiCall call("CreateMutexW");
    if (call.Fails())
        return nullptr;
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> mutex = CreateNamed(lock, name, NamedKind::kMutex, [&] {
        auto made = std::make_shared<Mutex>();
        if (initial_owner)
            made->Consume(CurrentThread());
        return made;
    });
    return mutex ? OpenHandle(lock, std::move(mutex)) : nullptr;
}

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
    inner.owner = self;
    ++inner.count;
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
