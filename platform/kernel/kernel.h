#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/board.h"
#include "platform/kernel/clock.h"

namespace platform::kernel {

enum class Mode { kFreeRunning, kSimulated };

struct Options {
    Mode mode = Mode::kSimulated;
    // Free running: how many times as fast as the host's clock.
    double speed = 1.0;
    // Simulated: decides which of several ready threads runs.
    std::uint64_t seed = 1;
    // Simulated: at any call of the platform the seed may also preempt the thread.
    bool preempt = false;
    // UpdateWindow on another thread's window waits until that thread has painted.
    bool waiting_repaints = false;
    // Time on the unit's clock at Boot: the program starts some time after power-on.
    Time start = std::chrono::seconds(20);
};

// One platform a process at a time. The thread that boots it becomes the host thread.
void Boot(const Options& options, Board& board);

// What the program left behind; all zero after a clean run.
struct Leftovers {
    std::size_t threads = 0;
    std::size_t handles = 0;
};

// Called on the host thread once the threads of the platform have ended; counts those that have not
// and leaves them running. Closes open handles.
Leftovers Shutdown();

bool Booted();
const Options& CurrentOptions();
Board& CurrentBoard();

// The kind of the object that this process has under that name; the reply to another process's
// OtherProcesses::FindObject. A stand-in counts: it keeps the name as any handle does. Any thread.
NamedKind FindNamedKind(const std::wstring& name);

// Counts for tests and the unit's state dump. Any thread.
std::size_t HandleCount();
std::size_t ThreadCount();

}  // namespace platform::kernel
