#include "unit/report/screen_gallery.h"

#include <utility>

#include "unit/traces/screen_name.h"

namespace unit {
namespace {

constexpr std::size_t kMostRepeats = 5;

std::vector<std::string> WithoutNumbers(std::vector<std::string> texts) {
    for (std::string& text : texts)
        std::erase_if(text, [](char each) { return each >= '0' && each <= '9'; });
    return texts;
}

}  // namespace

void ScreenGallery::Add(std::chrono::microseconds time, const ScreenSettled& screen,
                        Picture picture) {
    if (std::exchange(last_digest_, screen.digest) == screen.digest)
        return;
    const std::vector<std::string> kind = WithoutNumbers(screen.texts);
    const bool similar = !kind.empty() && std::exchange(last_kind_, kind) == kind;
    if (const auto known = known_.find(screen.digest); known != known_.end()) {
        in_row_ = false;
        Repeats& repeats = known->second;
        if (++repeats.count <= kMostRepeats)
            repeats.first.push_back(time);
        return;
    }
    ShownScreen shown{time, ScreenName(screen.texts), screen.texts, screen.digest,
                      std::move(picture)};
    if (similar && in_row_) {
        ShownScreen& last = *screens_.last();
        known_.erase(last.digest);
        shown.similar_before = last.similar_before + 1;
        last = std::move(shown);
    } else {
        in_row_ = similar;
        if (const auto dropped = screens_.Add(std::move(shown)))
            known_.erase(dropped->digest);
    }
    known_.try_emplace(screen.digest);
}

ScreenGallery::Repeats ScreenGallery::RepeatsOf(std::uint64_t digest) const {
    const auto known = known_.find(digest);
    return known == known_.end() ? Repeats{} : known->second;
}

}  // namespace unit
