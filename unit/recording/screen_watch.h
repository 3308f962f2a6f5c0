#pragma once

#include <functional>
#include <mutex>
#include <optional>

#include "platform/gdi/surface.h"
#include "platform/kernel/clock.h"
#include "platform/kernel/scheduler.h"
#include "unit/events/event_hub.h"

namespace unit {

class VirtualUnit;

// What the graphics plane shows now.
ScreenSettled ReadScreen(const platform::gdi::Surface& surface);

// Reports each picture of the graphics plane that has been unchanged for long enough and differs
// from the picture reported before it. A picture that changes while it is read is not reported.
// Host thread; the unit must outlive it.
class ScreenWatch {
  public:
    struct Pace {
        // How long a picture must be unchanged. With zero, every picture is read that the program
        // leaves on the screen, however briefly.
        platform::kernel::Duration settle_time{};
        // If not zero, that time begins at the next multiple of this, counted from when the watch
        // was made.
        platform::kernel::Duration grid{};
    };
    using Subscriber = std::function<void(const ScreenSettled&)>;
    // Until when the picture before is known to have been shown.
    using UnseenSubscriber = std::function<void(platform::kernel::Time known_until)>;

    // `unseen`, if any, is called before a picture is reported, and at the end when none was, after
    // a time without a known picture that is longer than a change needs.
    ScreenWatch(VirtualUnit& unit, Pace pace, Subscriber subscriber, UnseenSubscriber unseen = {});
    ~ScreenWatch();
    ScreenWatch(const ScreenWatch&) = delete;
    ScreenWatch& operator=(const ScreenWatch&) = delete;

  private:
    void NoteDrawn();
    // With the mutex held.
    void LookLater();
    platform::kernel::Time SettledAt() const;
    void Look();
    void ReportUnseen(platform::kernel::Time from, platform::kernel::Time until) const;

    VirtualUnit& unit_;
    const Pace pace_;
    const platform::kernel::Time start_;
    const Subscriber subscriber_;
    const UnseenSubscriber unseen_;
    std::uint64_t read_version_ = 0;
    ScreenSettled reported_;

    // Taken before the kernel's lock.
    std::mutex mutex_;
    // The first change since the screen was last read, and the last one.
    std::optional<platform::kernel::Time> changed_;
    platform::kernel::Time last_change_;
    platform::kernel::EventId next_look_ = 0;  // 0 when none is scheduled
    EventHub::Subscription subscription_;
};

}  // namespace unit
