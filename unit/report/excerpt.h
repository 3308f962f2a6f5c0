#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <utility>
#include <vector>

namespace unit {

// The first and the latest entries of a list that can have any length: how a run began and how it
// ended.
template <class Entry>
class Excerpt {
  public:
    Excerpt(std::size_t most_first, std::size_t most_latest)
        : most_first_(most_first), most_latest_(most_latest) {}

    // Returns the entry that is left out from now on, if any.
    std::optional<Entry> Add(Entry entry) {
        ++count_;
        if (first_.size() < most_first_) {
            first_.push_back(std::move(entry));
            return std::nullopt;
        }
        latest_.push_back(std::move(entry));
        if (latest_.size() <= most_latest_)
            return std::nullopt;
        std::optional<Entry> dropped = std::move(latest_.front());
        latest_.pop_front();
        return dropped;
    }

    // Of all entries, those that were left out too.
    std::size_t count() const { return count_; }
    std::size_t left_out() const { return count_ - first_.size() - latest_.size(); }
    // The entry that was added last; null when there is none.
    Entry* last() {
        if (!latest_.empty())
            return &latest_.back();
        return first_.empty() ? nullptr : &first_.back();
    }

    // Calls visit(entry) for each entry in order, and gap(count) where entries were left out.
    template <class Visit, class Gap>
    void ForEach(Visit visit, Gap gap) const {
        for (const Entry& entry : first_)
            visit(entry);
        if (left_out() > 0)
            gap(left_out());
        for (const Entry& entry : latest_)
            visit(entry);
    }
    template <class Visit>
    void ForEach(Visit visit) const {
        ForEach(visit, [](std::size_t) {});
    }

  private:
    std::size_t most_first_;
    std::size_t most_latest_;
    std::size_t count_ = 0;
    std::vector<Entry> first_;
    std::deque<Entry> latest_;
};

}  // namespace unit
