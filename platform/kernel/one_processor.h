#pragma once

#include <sched.h>

namespace platform::kernel {

// Keeps the calling thread, and those that it starts, on the processor that it runs on, until it
// goes. Threads of which one runs at a time then hand over without waking another processor, which
// takes most of the time of a simulated run otherwise. To be made and destroyed on one thread;
// where the host forbids it, nothing changes.
class OneProcessor {
  public:
    OneProcessor() {
        cpu_set_t here;
        CPU_ZERO(&here);
        const int processor = sched_getcpu();
        known_ = processor >= 0 && sched_getaffinity(0, sizeof allowed_, &allowed_) == 0;
        if (!known_)
            return;
        CPU_SET(processor, &here);
        sched_setaffinity(0, sizeof here, &here);
    }
    ~OneProcessor() {
        if (known_)
            sched_setaffinity(0, sizeof allowed_, &allowed_);
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

  private:
    cpu_set_t allowed_{};
    bool known_ = false;
};

}  // namespace platform::kernel
