#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/kernel/thread.h"

namespace tests {

// Threads that a platform thread starts and waits for, through the API.
class Crew {
  public:
    Crew() = default;
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    ~Crew() { Join(); }

    void Start(std::function<void()> body, int priority = THREAD_PRIORITY_NORMAL) {
        auto entry = [body = std::move(body)] {
            body();
            return DWORD{0};
        };
        handles_.push_back(
            platform::kernel::OpenHandle(platform::kernel::StartThread(entry, priority)));
    }

    void Join() {
        for (const HANDLE handle : handles_) {
            WaitForSingleObject(handle, INFINITE);
            CloseHandle(handle);
        }
        handles_.clear();
    }

  private:
    std::vector<HANDLE> handles_;
};

}  // namespace tests
