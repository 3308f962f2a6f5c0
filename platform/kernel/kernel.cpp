#include "platform/kernel/kernel.h"

#include <algorithm>
#include <utility>

#include "platform/kernel/kernel_state.h"

namespace platform::kernel {
namespace {

std::mutex g_kernel_mutex;
KernelState* g_state = nullptr;
bool g_booted = false;

}  // namespace

KernelLock LockKernel() {
    return KernelLock(g_kernel_mutex);
}

KernelState& State() {
    return *g_state;
}

bool Booted() {
    return g_booted;
}

void Boot(const Options& options, Board& board) {
    auto state = std::make_unique<KernelState>();
    state->options = options;
    state->board = &board;
    state->host_thread = std::make_shared<Thread>();
    state->scheduler = options.mode == Mode::kSimulated
                           ? MakeSimulatedScheduler(options, *state->host_thread)
                           : MakeFreeScheduler(options, *state->host_thread);
    BecomeHostThread(state->host_thread);
    g_state = state.release();
    ForgetCallFaults();
    g_booted = true;
}

Leftovers Shutdown() {
    ReapThreads();
    Leftovers leftovers;
    std::vector<HANDLE> open;
    {
        KernelLock lock = LockKernel();
        leftovers.threads = g_state->threads.size();
        leftovers.handles = g_state->handles.size();
        g_state->handles.ForEach([&](std::uintptr_t value, const std::shared_ptr<Object>&) {
            open.push_back(reinterpret_cast<HANDLE>(value));
        });
    }
    // An object may close handles of its own as it goes.
    for (const HANDLE handle : open)
        CloseHandle(handle);
    g_booted = false;
    // A thread that goes on must find its scheduler: its state is given up, not destroyed.
    if (leftovers.threads == 0)
        delete std::exchange(g_state, nullptr);
    BecomeHostThread(nullptr);
    ForgetCallFaults();
    return leftovers;
}

const Options& CurrentOptions() {
    return g_state->options;
}

Board& CurrentBoard() {
    return *g_state->board;
}

std::size_t HandleCount() {
    KernelLock lock = LockKernel();
    return g_state->handles.size();
}

std::size_t ThreadCount() {
    KernelLock lock = LockKernel();
    return static_cast<std::size_t>(
        std::count_if(g_state->threads.begin(), g_state->threads.end(),
                      [](const std::shared_ptr<Thread>& thread) { return !thread->ended; }));
}

}  // namespace platform::kernel
