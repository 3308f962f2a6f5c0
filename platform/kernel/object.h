#pragma once

#include <windows.h>

#include <memory>

#include "platform/board.h"
#include "platform/kernel/kernel_lock.h"

namespace platform::kernel {

class Thread;
using platform::NamedKind;

// A kernel object, referenced by HANDLEs. It lives as long as a handle or a thread uses it.
class Object {
  public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object() = default;

    // Its kind, if it may have a name.
    virtual NamedKind Kind() const { return NamedKind::kNone; }

    // Whether the object can be waited for.
    virtual bool Waitable() const { return false; }

    // Called by every wait with the kernel lock held: whether `waiter` may pass, and the change of
    // the object when it does.
    virtual bool Signalled(const Thread& waiter) const;
    // True when the last owner abandoned the object.
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
