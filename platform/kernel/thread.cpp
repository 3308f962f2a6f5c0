#include "platform/kernel/thread.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

thread_local std::shared_ptr<Thread> t_current;
thread_local DWORD t_last_error = ERROR_SUCCESS;

DWORD RunToTheEnd(const Thread::Entry& entry) {
    const DWORD exit_code = entry();
    for (const std::function<void()>& hook : State().thread_end_hooks)
        hook();
    return exit_code;
}

}  // namespace

bool Thread::Signalled(const Thread&) const {
    return ended;
}

std::shared_ptr<Thread> CurrentThreadShared() {
    if (!t_current)
        t_current = std::make_shared<Thread>();
    return t_current;
}

Thread& CurrentThread() {
    return t_current ? *t_current : *CurrentThreadShared();
}

void BecomeHostThread(std::shared_ptr<Thread> thread) {
    t_current = std::move(thread);
}

std::shared_ptr<Thread> StartThread(Thread::Entry entry, int priority, ProcessId process) {
    ReapThreads();
    auto thread = std::make_shared<Thread>();
    KernelLock lock = LockKernel();
    KernelState& state = State();
    thread->id = ++state.last_thread_id * 4;
    thread->priority = priority;
    thread->process = process;
    state.threads.push_back(thread);
    state.scheduler->Adopt(lock, *thread);
    thread->native_thread = std::thread([thread, entry = std::move(entry)]() mutable {
        t_current = thread;
        KernelLock inner = LockKernel();
        State().scheduler->Enter(inner, *thread);
        inner.unlock();
        // Destroys what the entry holds while the thread still counts as running.
        const DWORD exit_code = RunToTheEnd(std::exchange(entry, {}));
        inner.lock();
        thread->exit_code = exit_code;
        thread->ended = true;
        Wake(inner);
        State().scheduler->Leave(inner, *thread);
    });
    return thread;
}

void AtThreadEnd(std::function<void()> hook) {
    State().thread_end_hooks.push_back(std::move(hook));
}

void ReapThreads() {
    std::vector<std::shared_ptr<Thread>> ended;
    {
        KernelLock lock = LockKernel();
        auto& threads = State().threads;
        const auto first = std::stable_partition(
            threads.begin(), threads.end(),
            [](const std::shared_ptr<Thread>& thread) { return !thread->ended; });
        ended.assign(first, threads.end());
        threads.erase(first, threads.end());
    }
    for (const std::shared_ptr<Thread>& thread : ended)
        thread->native_thread.join();
}

}  // namespace platform::kernel

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

DWORD GetTickCount() {
    SchedulingPoint();
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(Now()).count());
}

DWORD GetLastError() {
    return t_last_error;
}

void SetLastError(DWORD error) {
    t_last_error = error;
}
