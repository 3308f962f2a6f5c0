#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/kernel/thread.h"

namespace unit {

// Runs the program on a thread of the unit. Host thread.
class ProgramHost {
  public:
    using Entry = std::function<int()>;

    void Start(Entry entry);

    bool started() const { return thread_ != nullptr; }
    bool running() const { return started() && !ended_; }
    // The program's result, after it ended.
    int exit_code() const { return exit_code_; }

    // Closes the program's window as its close button does; nothing without a window.
    static void CloseWindow();

    // Any thread.
    static bool HasWindow();
    // True for the name of the program's mutex while the program has no window yet. Any thread.
    bool Starts(std::wstring_view name) const;

    // Handles that the program keeps until its process ends: the single-instance mutex.
    static std::size_t HandlesKept();

  private:
    std::shared_ptr<platform::kernel::Thread> thread_;
    std::atomic<bool> ended_{false};
    std::atomic<int> exit_code_{0};
};

}  // namespace unit
