#include "unit/tolvane/signals.h"

#include <pthread.h>

#include <csignal>

namespace unit {
namespace {

// Wakes the listener at the end; nobody else sends it.
constexpr int kEndSignal = SIGUSR1;

sigset_t CloseSet() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, kEndSignal})
        sigaddset(&set, signal);
    return set;
}

}  // namespace

CloseSignals::CloseSignals() {
    const sigset_t set = CloseSet();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    listener_ = std::thread([this] {
        const sigset_t waited = CloseSet();
        int signal = 0;
        while (!ending_ && sigwait(&waited, &signal) == 0) {
            if (signal != kEndSignal)
                raised_ = true;
        }
    });
}

CloseSignals::~CloseSignals() {
    ending_ = true;
    pthread_kill(listener_.native_handle(), kEndSignal);
    listener_.join();
}

}  // namespace unit
