#include "unit/recording/screen_watch.h"

#include <cstring>

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

SettledScreen Read(const platform::gdi::Surface& surface) {
    SettledScreen screen{DigestOf(surface.pixels()), {}};
    for (const platform::gdi::PlacedText& placed : surface.texts())
        screen.texts.push_back(kernel::ToUtf8(placed.text));
    return screen;
}

}  // namespace

ScreenWatch::ScreenWatch(VirtualUnit& unit, Pace pace, Listener listener, UnseenListener unseen)
    : unit_(unit),
      pace_(pace),
      listener_(std::move(listener)),
      unseen_(std::move(unseen)),
      known_until_(kernel::Now()) {
    LookLater();
}

ScreenWatch::~ScreenWatch() {
    kernel::Cancel(next_look_);
    if (unit_.screen_version() != read_version_)
        TellUnseen(kernel::Now());
}

void ScreenWatch::LookLater() {
    next_look_ = kernel::After(pace_.look, [this] {
        Look();
        LookLater();
    });
}

void ScreenWatch::TellUnseen(kernel::Time until) {
    if (unseen_ && until - known_until_ > 2 * pace_.still)
        unseen_(known_until_);
}

void ScreenWatch::Look() {
    const std::uint64_t version = unit_.screen_version();
    if (version != seen_version_) {
        seen_version_ = version;
        since_ = kernel::Now();
    }
    if (version == read_version_) {
        known_until_ = kernel::Now();
        return;
    }
    if (kernel::Now() - since_ < pace_.still)
        return;
    SettledScreen screen = Read(unit_.Screen());
    // What changed while it was read may have been read by halves.
    if (unit_.screen_version() != version)
        return;
    read_version_ = version;
    TellUnseen(since_);
    known_until_ = kernel::Now();
    if (screen == told_)
        return;
    told_ = std::move(screen);
    listener_(told_);
}

}  // namespace unit
