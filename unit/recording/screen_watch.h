#pragma once

#include <functional>

#include "platform/kernel/clock.h"
#include "platform/kernel/scheduler.h"
#include "unit/recording/recording.h"

namespace unit {

class VirtualUnit;

// Looks at the graphics plane again and again, and tells each picture that stood still for long
// enough and differs from the one told before it. What changes while it is looked at is never told.
// All on the hardware's thread; the unit must outlive it.
class ScreenWatch {
  public:
    struct Pace {
        platform::kernel::Duration look;   // between two looks
        platform::kernel::Duration still;  // unchanged for so long
    };
    using Listener = std::function<void(const SettledScreen&)>;
    // Until when the picture before it is known to have stood.
    using UnseenListener = std::function<void(platform::kernel::Time known_until)>;

    // `unseen`, when there is one, is told before a picture settles, and at the end when none did:
    // of a while that was longer than a change needs.
    ScreenWatch(VirtualUnit& unit, Pace pace, Listener listener, UnseenListener unseen = {});
    ~ScreenWatch();
    ScreenWatch(const ScreenWatch&) = delete;
    ScreenWatch& operator=(const ScreenWatch&) = delete;

  private:
    void LookLater();
    void Look();
    void TellUnseen(platform::kernel::Time until);

    VirtualUnit& unit_;
    const Pace pace_;
    const Listener listener_;
    const UnseenListener unseen_;
    platform::kernel::EventId next_look_ = 0;
    std::uint64_t seen_version_ = 0;
    std::uint64_t read_version_ = 0;
    platform::kernel::Time since_{};
    platform::kernel::Time known_until_;
    SettledScreen told_;
};

}  // namespace unit
