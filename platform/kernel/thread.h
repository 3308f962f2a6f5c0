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

// The applications of the unit are processes to each other, each known by its number, which is what
// GetCurrentProcessId gives. The system is the hardware's thread and whatever the unit itself does.
using ProcessId = DWORD;
inline constexpr ProcessId kSystemProcess = 0x00400002;
inline constexpr ProcessId kProgramProcess = 0x00500002;

// A thread of the program or of one of the unit's applications; signalled once it has ended.
// Fields are guarded by the kernel lock unless told otherwise.
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

    // What other subsystems keep per thread (its message queue); set and read by that thread or
    // under the kernel lock.
    std::shared_ptr<void> message_queue;

    // The scheduler's own: see scheduler.h.
    std::condition_variable wake;
    const std::function<bool()>* blocked_on = nullptr;
    Time blocked_until = kNever;
    bool running = false;
    std::thread host_thread;
};

// The calling thread. The hardware's thread (and any thread the platform did not start) has a
// Thread of its own too, which never ends.
Thread& CurrentThread();
std::shared_ptr<Thread> CurrentThreadShared();

// Starts `entry` on a thread of the platform, of the caller's process unless told otherwise. Any
// thread.
std::shared_ptr<Thread> StartThread(Thread::Entry entry, int priority = THREAD_PRIORITY_NORMAL,
                                    ProcessId process = CurrentThread().process);

// Registers what is to happen on every thread of the platform as its last action (windows of the
// thread are destroyed there). Before threads start.
void AtThreadEnd(std::function<void()> hook);

}  // namespace platform::kernel
