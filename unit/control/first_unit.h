#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

#include "platform/board.h"

namespace unit {

// The unit that had the control socket before this one: where the program runs already, perhaps. It
// is asked over its socket, and each question has a limit of the host's time, half a second and
// three for the last one: a unit that does not answer in time counts as gone from then on.
class FirstUnit final : public platform::OtherProcesses {
  public:
    // `alone` tells whether this process has the socket itself, so that there is nobody to ask.
    // `came_forward` is called when the other's window did, on the thread that asked.
    FirstUnit(std::string name, std::function<bool()> alone, std::function<void()> came_forward)
        : name_(std::move(name)),
          alone_(std::move(alone)),
          came_forward_(std::move(came_forward)) {}

    bool there() const { return !gone_ && !alone_(); }

    // Only the mutexes of the other count: they are what copies of the program meet by. A copy that
    // runs beside the other has its events and queues to itself.
    platform::NamedKind FindObject(std::wstring_view name) override;
    platform::OtherProcessWindow FindWindow(std::optional<std::wstring_view> class_name,
                                            std::optional<std::wstring_view> title) override;
    bool BringForward(platform::OtherProcessWindow window, bool with_owned) override;

  private:
    // The answer's one line; empty when there is none.
    std::string Ask(const std::string& line, std::chrono::milliseconds limit);

    const std::string name_;
    const std::function<bool()> alone_;
    const std::function<void()> came_forward_;
    std::atomic<bool> gone_{false};
};

}  // namespace unit
