#include "platform/kernel/object.h"

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel_state.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {

bool Object::Signalled(const Thread&) const {
    return false;
}

bool Object::Consume(Thread&) {
    return false;
}

HANDLE OpenHandle(KernelLock&, std::shared_ptr<Object> object) {
    const std::uintptr_t value = State().handles.Insert(std::move(object));
    if (value == 0)
        SetLastError(ERROR_OUTOFMEMORY);
    return reinterpret_cast<HANDLE>(value);
}

HANDLE OpenHandle(std::shared_ptr<Object> object) {
    KernelLock lock = LockKernel();
    return OpenHandle(lock, std::move(object));
}

std::shared_ptr<Object> FindObject(KernelLock&, HANDLE handle) {
    if (handle == GetCurrentThread())
        return CurrentThreadShared();
    return State().handles.Find(reinterpret_cast<std::uintptr_t>(handle));
}

std::shared_ptr<Object> FindObject(HANDLE handle) {
    KernelLock lock = LockKernel();
    return FindObject(lock, handle);
}

}  // namespace platform::kernel

using namespace platform::kernel;

BOOL CloseHandle(HANDLE handle) {
    const ApiCall call("CloseHandle");
    if (call.Fails())
        return FALSE;
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> object =
        State().handles.Remove(reinterpret_cast<std::uintptr_t>(handle));
    lock.unlock();
    if (!object) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    object->HandleClosed();
    return TRUE;
}
