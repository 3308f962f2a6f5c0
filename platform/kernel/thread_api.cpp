#include <windows.h>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel_state.h"

using namespace platform::kernel;

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, DWORD, LPTHREAD_START_ROUTINE start, LPVOID parameter,
                    DWORD flags, LPDWORD thread_id) {
    const ApiCall call("CreateThread");
    if (call.Fails())
        return nullptr;
    // Suspended threads are not supported; the stack size is the host's business.
    if (!start || (flags & CREATE_SUSPENDED) != 0) {
        SetLastError(start ? ERROR_CALL_NOT_IMPLEMENTED : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::shared_ptr<Thread> thread = StartThread([start, parameter] { return start(parameter); });
    if (thread_id)
        *thread_id = thread->id;
    return OpenHandle(std::move(thread));
}

BOOL GetExitCodeThread(HANDLE handle, LPDWORD exit_code) {
    const ApiCall call("GetExitCodeThread");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Thread> thread = FindObjectAs<Thread>(handle);
    if (!thread)
        return FALSE;
    if (!exit_code) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    KernelLock lock = LockKernel();
    *exit_code = thread->ended ? thread->exit_code : STILL_ACTIVE;
    return TRUE;
}

BOOL SetThreadPriority(HANDLE handle, int priority) {
    const ApiCall call("SetThreadPriority");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Thread> thread = FindObjectAs<Thread>(handle);
    if (!thread)
        return FALSE;
    if (priority < THREAD_PRIORITY_TIME_CRITICAL || priority > THREAD_PRIORITY_IDLE) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    KernelLock lock = LockKernel();
    thread->priority = priority;
    Wake(lock);
    return TRUE;
}

int GetThreadPriority(HANDLE handle) {
    const ApiCall call("GetThreadPriority");
    if (call.Fails())
        return THREAD_PRIORITY_ERROR_RETURN;
    const std::shared_ptr<Thread> thread = FindObjectAs<Thread>(handle);
    if (!thread)
        return THREAD_PRIORITY_ERROR_RETURN;
    KernelLock lock = LockKernel();
    return thread->priority;
}

DWORD GetCurrentThreadId() {
    return CurrentThread().id;
}

DWORD GetCurrentProcessId() {
    return CurrentThread().process;
}

DWORD GetTickCount() {
    SchedulingPoint();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(Now()).count());
}
