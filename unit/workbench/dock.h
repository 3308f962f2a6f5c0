#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
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

// The row of controls above a list, and what they say. While it is paused, a list stays as it is;
// else it follows its newest entry, unless the operator has scrolled up.
class ListControls {
  public:
    enum class Wish { kNothing, kClear, kCopy, kSave, kFind };

    // `count` is the number of all entries so far.
    Wish Draw(PanelContext& context, std::uint64_t count);

    // Those of the entries that are shown now.
    std::span<const std::uint64_t> Shown(const FilteredList& list) const;
    // After the list was drawn, within its window.
    void ScrollToNewest() const;

    const std::string& filter() const { return filter_; }
    const std::string& find() const { return find_; }

  private:
    std::string filter_;
    std::string find_;
    bool paused_ = false;
    std::uint64_t paused_at_ = 0;
};

// A list of the history with its controls.
template <class List>
class ListView {
  public:
    // `draw(entry, found)` draws one entry as a row; `found` marks the one that was searched for.
    template <class DrawRow>
    void DrawRows(const List& list, DrawRow draw);

  protected:
    // Draws the controls and executes what they ask for; `text(entry)` is what filter, search, copy
    // and save use. True if the list must be cleared.
    template <class Text>
    bool DrawControls(PanelContext& context, const List& list, const char* file, Text text);

    ListControls controls_;
    FilteredList shown_;
    std::optional<std::uint64_t> found_;
    bool scroll_to_found_ = false;
};

// The frames on the serial line.
class TrafficView : ListView<Latest<LineEntry, 10'000>> {
  public:
    void Draw(PanelContext& context);
};

// The program's debug output.
class LogView : ListView<Latest<History::Line, 10'000>> {
  public:
    void Draw(PanelContext& context);
};

// The index of the latest update's first report: the last one that begins again at 0 or 1 percent.
std::size_t LatestUpdate(const std::deque<History::Percent>& percents);

class Dock {
  public:
    // A click on a command puts it into `line`.
    void Draw(PanelContext& context, std::string& line);

  private:
    static void DrawUpdate(PanelContext& context);

    TrafficView traffic_;
    LogView log_;
    CommandView commands_;
};

}  // namespace unit
