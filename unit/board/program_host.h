#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

#include "platform/kernel/thread.h"

namespace unit {

// Starts the program on a thread of the unit and sees to its end. Hardware's thread.
class ProgramHost {
  public:
    using Entry = std::function<int()>;

    void Start(Entry entry);

    bool started() const { return thread_ != nullptr; }
    bool running() const { return started() && !ended_; }
    // What the program's entry returned, once it has ended.
    int exit_code() const { return exit_code_; }

    // Closes the program's window in order, as a tap on its close button would; a program without
    // a window is left alone.
    static void CloseWindow();

    // Any thread.
    static bool HasWindow();
    // Whether the program is about to start, or has started and not come to its window, and has
    // that name for its mutex. Any thread.
    bool Starts(std::wstring_view name) const;

    // Handles that the program means to keep until its process ends: the single-instance mutex.
    static std::size_t HandlesKept();

  private:
    std::shared_ptr<platform::kernel::Thread> thread_;
    std::atomic<bool> ended_{false};
    std::atomic<int> exit_code_{0};
};

}  // namespace unit
