#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/kernel/clock.h"
#include "platform/kernel/object.h"

namespace platform::kernel {

// Each application of the unit is a process with a number. The system process is the host thread
// and everything that the unit itself does.
using ProcessId = DWORD;
inline constexpr ProcessId kSystemProcess = 0x00400002;
inline constexpr ProcessId kProgramProcess = 0x00500002;

// A thread of the program or of one of the unit's applications; signalled once it has ended.
// By default the kernel lock guards the fields.
class Thread : public Object {
  public:
    using Entry = std::function<DWORD()>;

    bool Waitable() const override { return true; }
    bool Signalled(const Thread& waiter) const override;

    DWORD id = 0;
    ProcessId process = kSystemProcess;  // set before the thread runs
    int priority = THREAD_PRIORITY_NORMAL;
    bool ended = false;
    DWORD exit_code = 0;

    // The window manager's queue of the thread; accessed by that thread or under the kernel lock.
    std::shared_ptr<void> message_queue;

    // Owned by the scheduler; see scheduler.h.
    std::condition_variable wake;
    const std::function<bool()>* blocked_on = nullptr;
    Time blocked_until = kNever;
    bool running = false;
    std::thread native_thread;
};

// The calling thread. The host thread, and any thread that the platform did not start, has a Thread
// too, which never ends.
Thread& CurrentThread();
std::shared_ptr<Thread> CurrentThreadShared();

// Starts `entry` on a thread of the platform, by default in the caller's process. Any thread.
std::shared_ptr<Thread> StartThread(Thread::Entry entry, int priority = THREAD_PRIORITY_NORMAL,
                                    ProcessId process = CurrentThread().process);

// Registers an action that every thread of the platform runs last (it destroys the windows of the
// thread). Before threads start.
void AtThreadEnd(std::function<void()> hook);

}  // namespace platform::kernel
