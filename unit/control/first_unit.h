#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "platform/board.h"

namespace unit {

// The unit that had the control socket before this one; the program may already run there. Requests
// go over its socket, each with a limit of host time: three seconds for BringForward, half a second
// for the others. A unit that does not reply in time counts as gone from then on.
class FirstUnit final : public platform::OtherProcesses {
  public:
    // `alone` returns whether this process has the socket itself, so that there is no other unit.
    // `came_forward` is called after the other unit's window came to the front, on the calling
    // thread.
    FirstUnit(std::string name, std::function<bool()> alone, std::function<void()> came_forward)
        : name_(std::move(name)),
          alone_(std::move(alone)),
          came_forward_(std::move(came_forward)) {}

    bool there() const { return !gone_ && !alone_(); }

    // Only mutexes of the other unit count: copies of the program use them to find each other.
    // Events and queues belong to each copy alone.
    platform::NamedKind FindObject(std::wstring_view name) override;
    platform::OtherProcessWindow FindWindow(std::optional<std::wstring_view> class_name,
                                            std::optional<std::wstring_view> title) override;
    bool BringForward(platform::OtherProcessWindow window, bool with_owned) override;

  private:
    // The one line of the reply; empty when none came.
    std::string Ask(const std::string& line, std::chrono::milliseconds limit);

    const std::string name_;
    const std::function<bool()> alone_;
    const std::function<void()> came_forward_;
    std::atomic<bool> gone_{false};
};

}  // namespace unit
