#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "unit/workbench/desk.h"

namespace unit {

// The tabs below the unit's screen: what passes by.

// The entries of a long list that a filter lets through, kept up as the list grows.
class FilteredList {
  public:
    // Looks at the entries that are new since the last call (all of them when the filter changed
    // or the list was cleared). `matches(index)` tells whether the list's entry fits.
    template <class Matches>
    void Update(const std::string& filter, std::uint64_t dropped, std::uint64_t count,
                Matches matches) {
        if (filter != filter_) {
            filter_ = filter;
            seen_ = dropped;
            numbers_.clear();
        }
        const auto gone = std::lower_bound(numbers_.begin(), numbers_.end(), dropped);
        numbers_.erase(numbers_.begin(), gone);
        for (seen_ = std::max(seen_, dropped); seen_ < count; ++seen_)
            if (matches(static_cast<std::size_t>(seen_ - dropped)))
                numbers_.push_back(seen_);
    }

    // Counted from the first entry that there ever was.
    const std::vector<std::uint64_t>& numbers() const { return numbers_; }

  private:
    std::string filter_;
    std::uint64_t seen_ = 0;
    std::vector<std::uint64_t> numbers_;
};

// The serial line, frame by frame.
class TrafficView {
  public:
    void Draw(Desk& desk);

  private:
    std::string filter_;
    bool paused_ = false;
    std::uint64_t paused_at_ = 0;
    FilteredList shown_;
};

// The program's debug output.
class LogView {
  public:
    void Draw(Desk& desk);

  private:
    std::string filter_;
    bool follows_ = true;
    FilteredList shown_;
};

// The percent that the DVR reports, over time.
void DrawProgress(Desk& desk);

// The commands that were followed, and all that there are.
class CommandView {
  public:
    // A click on a command puts it into `line`.
    void Draw(Desk& desk, std::string& line);

  private:
    std::string filter_;
    std::size_t shown_ = 0;
};

}  // namespace unit
