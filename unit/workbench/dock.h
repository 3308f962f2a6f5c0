#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "unit/workbench/command_views.h"
#include "unit/workbench/panel_context.h"

namespace unit {

// The tabs below the unit's screen.

// Those entries of a growing list that match a filter.
class FilteredList {
  public:
    // The list had `count` entries so far and dropped the first `dropped` of them. Calls
    // `matches(index)` for the list's new entries, or for all when the filter changed.
    template <class Match>
    void Update(const std::string& filter, std::uint64_t dropped, std::uint64_t count,
                Match matches) {
        if (filter != filter_) {
            filter_ = filter;
            seen_ = dropped;
            numbers_.clear();
        }
        const auto kept = std::lower_bound(numbers_.begin(), numbers_.end(), dropped);
        numbers_.erase(numbers_.begin(), kept);
        for (seen_ = std::max(seen_, dropped); seen_ < count; ++seen_)
            if (matches(static_cast<std::size_t>(seen_ - dropped)))
                numbers_.push_back(seen_);
    }

    // The matches, counted from the first entry that there ever was.
    const std::vector<std::uint64_t>& numbers() const { return numbers_; }

  private:
    std::string filter_;
    std::uint64_t seen_ = 0;
    std::vector<std::uint64_t> numbers_;
};

// The frames on the serial line.
class TrafficView {
  public:
    void Draw(PanelContext& context);

  private:
    std::string filter_;
    bool paused_ = false;
    std::uint64_t paused_at_ = 0;
    FilteredList shown_;
};

// The program's debug output.
class LogView {
  public:
    void Draw(PanelContext& context);

  private:
    std::string filter_;
    bool scrolls_ = true;
    FilteredList shown_;
};

// The index of the latest update's first report: the last one that begins again at 0 or 1 percent.
std::size_t LatestUpdate(const std::deque<History::Percent>& percents);

class Dock {
  public:
    // A click on a command puts it into `line`.
    void Draw(PanelContext& context, std::string& line);

  private:
    TrafficView traffic_;
    LogView log_;
    CommandView commands_;
};

}  // namespace unit
