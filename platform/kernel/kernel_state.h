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

// Everything the kernel holds between Boot and Shutdown; guarded by the kernel lock except what
// Boot sets once.
struct KernelState {
    Options options;
    Board* board = nullptr;
    std::unique_ptr<Scheduler> scheduler;
    std::shared_ptr<Thread> hardware;
    std::function<void()> hardware_waker;
    std::vector<std::function<void()>> thread_end_hooks;

    HandleTable<Object> handles{kKernelObjects};
    std::map<std::wstring, std::weak_ptr<Object>> names;
    std::vector<std::shared_ptr<Thread>> threads;
    DWORD last_thread_id = 0;
};

// Between Boot and Shutdown only.
KernelState& State();

// The hardware's thread object stands in for the calling thread from now on.
void BecomeHardwareThread(std::shared_ptr<Thread> thread);

// Begins the count of the program's calls anew, without faults.
void ForgetCallFaults();

// Ends and joins the host threads of threads that have ended.
void ReapThreads();

std::unique_ptr<Scheduler> MakeFreeScheduler(const Options& options, Thread& hardware);
std::unique_ptr<Scheduler> MakeSimulatedScheduler(const Options& options, Thread& hardware);

}  // namespace platform::kernel
