#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace unit {

// Ctrl-C and SIGTERM as a wish to close: counted, and told to a listener on the hardware's thread.
// To be made before any other thread, which inherits the blocked signals.
class CloseSignals {
  public:
    CloseSignals();
    ~CloseSignals();
    CloseSignals(const CloseSignals&) = delete;
    CloseSignals& operator=(const CloseSignals&) = delete;

    bool raised() const { return raised_; }

  private:
    std::atomic<bool> raised_{false};
    std::atomic<bool> ending_{false};
    std::thread listener_;
};

}  // namespace unit
