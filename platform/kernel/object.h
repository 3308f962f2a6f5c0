#pragma once

#include <windows.h>

#include <memory>

#include "platform/board.h"
#include "platform/kernel/kernel_lock.h"

namespace platform::kernel {

class Thread;
using platform::NamedKind;

// A kernel object: what a HANDLE stands for. It lives as long as a handle or a thread uses it.
class Object {
  public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // What it is under its name, if it may have one.
    virtual NamedKind Kind() const { return NamedKind::kNone; }

    // Whether a wait may name this object at all.
    virtual bool Waitable() const { return false; }

    // The two questions of every wait, asked with the kernel lock held: would `waiter` be let
    // through, and, once it is, what does that take from the object.
    virtual bool Signalled(const Thread& waiter) const;
    // Returns true when the object was abandoned by its last owner.
    virtual bool Consume(Thread& waiter);

    // The handle was closed through CloseHandle; called once per handle, without the lock.
    virtual void HandleClosed() {}
};

// Gives `object` a handle. Null with ERROR_OUTOFMEMORY when too many are open.
HANDLE OpenHandle(std::shared_ptr<Object> object);
HANDLE OpenHandle(KernelLock& lock, std::shared_ptr<Object> object);

// The object behind a handle, or null; sets no last error. The pseudo handle of the current
// thread is understood.
std::shared_ptr<Object> FindObject(HANDLE handle);
std::shared_ptr<Object> FindObject(KernelLock& lock, HANDLE handle);

// The object behind a handle when it is of that kind, else null with ERROR_INVALID_HANDLE.
template <class T>
std::shared_ptr<T> FindObjectAs(HANDLE handle) {
    auto object = std::dynamic_pointer_cast<T>(FindObject(handle));
    if (!object)
        SetLastError(ERROR_INVALID_HANDLE);
    return object;
}

}  // namespace platform::kernel
