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
    // Simulated: who runs among equals.
    std::uint64_t seed = 1;
    // Simulated: let the seed also take the processor from a thread at any call of the platform.
    bool preempt = false;
    // UpdateWindow on another thread's window waits until that thread has painted.
    bool waiting_repaints = false;
    // Time on the unit's clock at Boot: the program starts some time after power-on.
    Time start = std::chrono::seconds(20);
};

// One platform a process at a time. The thread that boots it is the hardware's thread.
void Boot(const Options& options, Board& board);

// What was left at the end; all zero after a clean run.
struct Leftovers {
    std::size_t threads = 0;
    std::size_t handles = 0;
};

// To be called on the hardware's thread once the threads of the platform have ended: those that
// have not are counted and left alone. Handles still open are closed.
Leftovers Shutdown();

bool Booted();
const Options& CurrentOptions();
Board& CurrentBoard();

// What this process has under that name, which is what it answers a neighbour that asks. A stand-in
// for a neighbour's object counts: it keeps the name as any handle does. Any thread.
NamedKind FindNamedKind(const std::wstring& name);

// Counts for tests and the unit's state dump. Any thread.
std::size_t HandleCount();
std::size_t ThreadCount();

}  // namespace platform::kernel
