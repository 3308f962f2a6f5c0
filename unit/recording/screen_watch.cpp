#include "unit/recording/screen_watch.h"

#include <utility>

#include "platform/kernel/text.h"
#include "unit/board/virtual_unit.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

// FNV-1a over whole pixels.
std::uint64_t DigestOf(std::span<const std::uint32_t> pixels) {
    constexpr std::uint64_t kBasis = 0xcbf29ce484222325;
    constexpr std::uint64_t kPrime = 0x100000001b3;
    std::uint64_t digest = kBasis;
    for (const std::uint32_t pixel : pixels)
        digest = (digest ^ pixel) * kPrime;
    return digest;
}

}  // namespace

ScreenSettled ReadScreen(const platform::gdi::Surface& surface) {
    ScreenSettled screen{DigestOf(surface.pixels()), {}};
    for (const platform::gdi::PlacedText& placed : surface.texts())
        screen.texts.push_back(kernel::ToUtf8(placed.text));
    return screen;
}

ScreenWatch::ScreenWatch(VirtualUnit& unit, Pace pace, Subscriber subscriber,
                         UnseenSubscriber unseen)
    : unit_(unit),
      pace_(pace),
      start_(kernel::Now()),
      subscriber_(std::move(subscriber)),
      unseen_(std::move(unseen)),
      last_change_(start_) {
    subscription_ = unit.events().Subscribe([this](const TimedEvent& timed) {
        if (std::holds_alternative<ScreenDrawn>(timed.event))
            NoteDrawn();
    });
    // What was drawn before is read too.
    const std::scoped_lock lock(mutex_);
    LookLater();
}

ScreenWatch::~ScreenWatch() {
    subscription_ = {};
    kernel::Cancel(next_look_);
    if (changed_)
        ReportUnseen(*changed_, kernel::Now());
}

void ScreenWatch::NoteDrawn() {
    const std::scoped_lock lock(mutex_);
    last_change_ = kernel::Now();
    if (!changed_)
        changed_ = last_change_;
    LookLater();
}

kernel::Time ScreenWatch::SettledAt() const {
    kernel::Time from = last_change_;
    if (pace_.grid.count() > 0)
        from = start_ + ((last_change_ - start_) / pace_.grid + 1) * pace_.grid;
    return from + pace_.settle_time;
}

void ScreenWatch::LookLater() {
    if (next_look_ == 0)
        next_look_ = kernel::At(SettledAt(), [this] { Look(); });
}

void ScreenWatch::ReportUnseen(kernel::Time from, kernel::Time until) const {
    if (unseen_ && until - from > 2 * pace_.settle_time)
        unseen_(from);
}

void ScreenWatch::Look() {
    std::unique_lock lock(mutex_);
    next_look_ = 0;
    if (kernel::Now() < SettledAt())
        return LookLater();
    const std::uint64_t version = unit_.screen_version();
    if (version == read_version_) {
        changed_.reset();
        return;
    }
    lock.unlock();
    ScreenSettled screen = ReadScreen(unit_.Screen());
    lock.lock();
    // A picture that changed meanwhile may have been read in part; its change has scheduled the
    // next look.
    if (unit_.screen_version() != version)
        return;
    read_version_ = version;
    const std::optional<kernel::Time> changed = std::exchange(changed_, std::nullopt);
    lock.unlock();
    // Includes the time by which a slow host delayed this look.
    if (changed)
        ReportUnseen(*changed, kernel::Now() - pace_.settle_time);
    if (screen == reported_)
        return;
    reported_ = std::move(screen);
    subscriber_(reported_);
}

}  // namespace unit
