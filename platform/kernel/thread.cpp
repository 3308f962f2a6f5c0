#include "platform/kernel/thread.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

thread_local std::shared_ptr<Thread> t_current;

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

void BecomeHardwareThread(std::shared_ptr<Thread> thread) {
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
    thread->host_thread = std::thread([thread, entry = std::move(entry)]() mutable {
        t_current = thread;
        KernelLock inner = LockKernel();
        State().scheduler->Enter(inner, *thread);
        inner.unlock();
        // What the entry holds goes with it, while the thread still counts as running.
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
        thread->host_thread.join();
}

}  // namespace platform::kernel
