#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/kernel/handle_table.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/object.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {

// The state of the kernel between Boot and Shutdown. The kernel lock guards everything that Boot
// does not set once.
struct KernelState {
    Options options;
    Board* board = nullptr;
    std::unique_ptr<Scheduler> scheduler;
    std::shared_ptr<Thread> host_thread;
    std::function<void()> host_thread_waker;
    std::vector<std::function<void()>> thread_end_hooks;

    HandleTable<Object> handles{kKernelObjects};
    std::map<std::wstring, std::weak_ptr<Object>> names;
    std::vector<std::shared_ptr<Thread>> threads;
    DWORD last_thread_id = 0;
};

// Between Boot and Shutdown only.
KernelState& State();

// Makes the calling thread the host thread.
void BecomeHostThread(std::shared_ptr<Thread> thread);

// Resets the counts of the program's calls and clears all faults.
void ForgetCallFaults();

// Joins the native threads of threads that have ended.
void ReapThreads();

std::unique_ptr<Scheduler> MakeFreeScheduler(const Options& options, Thread& host_thread);
std::unique_ptr<Scheduler> MakeSimulatedScheduler(const Options& options, Thread& host_thread);

}  // namespace platform::kernel
