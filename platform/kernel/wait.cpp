#include "platform/kernel/wait.h"

#include "platform/kernel/api_call.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {

DWORD WaitForAny(KernelLock& lock, std::span<const std::shared_ptr<Object>> objects,
                 const std::function<bool()>& interrupted, Time deadline) {
    Thread& self = CurrentThread();
    std::size_t index = 0;
    const auto ready = [&] {
        for (index = 0; index < objects.size(); ++index)
            if (objects[index]->Signalled(self))
                return true;
        return interrupted && interrupted();
    };
    if (!Block(lock, ready, deadline))
        return WAIT_TIMEOUT;
    if (index == objects.size())
        return WAIT_OBJECT_0 + static_cast<DWORD>(index);
    const bool abandoned = objects[index]->Consume(self);
    return (abandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + static_cast<DWORD>(index);
}

bool CollectWaitObjects(const HANDLE* handles, DWORD count, bool allow_none,
                        std::vector<std::shared_ptr<Object>>& objects) {
    if (count > MAXIMUM_WAIT_OBJECTS || (count == 0 && !allow_none) || (count != 0 && !handles)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    for (DWORD index = 0; index < count; ++index) {
        std::shared_ptr<Object> object = FindObject(handles[index]);
        if (!object || !object->Waitable()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return false;
        }
        objects.push_back(std::move(object));
    }
    return true;
}

}  // namespace platform::kernel

using namespace platform::kernel;

namespace {

DWORD Wait(DWORD count, const HANDLE* handles, DWORD milliseconds) {
    std::vector<std::shared_ptr<Object>> objects;
    if (!CollectWaitObjects(handles, count, false, objects))
        return WAIT_FAILED;
    const Time deadline = DeadlineAfter(milliseconds);
    KernelLock lock = LockKernel();
    return WaitForAny(lock, objects, {}, deadline);
}

}  // namespace

DWORD WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL wait_all,
                             DWORD milliseconds) {
    const ApiCall call("WaitForMultipleObjects");
    if (call.Fails())
        return WAIT_FAILED;
    if (wait_all) {
        // As on the device, where only wait-any exists.
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    return Wait(count, handles, milliseconds);
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const ApiCall call("WaitForSingleObject");
    if (call.Fails())
        return WAIT_FAILED;
    return Wait(1, &handle, milliseconds);
}

void Sleep(DWORD milliseconds) {
    SchedulingPoint();
    const Time deadline = DeadlineAfter(milliseconds);
    KernelLock lock = LockKernel();
    Block(
        lock, [] { return false; }, deadline);
}
