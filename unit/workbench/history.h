#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "unit/events/event_hub.h"
#include "unit/line/frame_monitor.h"

namespace unit {

// The latest entries of something that never ends.
template <class Entry, std::size_t kMost>
class Latest {
  public:
    void Add(Entry entry) {
        entries_.push_back(std::move(entry));
        if (entries_.size() > kMost) {
            entries_.pop_front();
            ++dropped_;
        }
    }
    void Clear() {
        dropped_ += entries_.size();
        entries_.clear();
    }

    const std::deque<Entry>& entries() const { return entries_; }
    // How many came before the first one here.
    std::uint64_t dropped() const { return dropped_; }
    // How many there ever were.
    std::uint64_t count() const { return dropped_ + entries_.size(); }

  private:
    std::deque<Entry> entries_;
    std::uint64_t dropped_ = 0;
};

// What has happened at the unit's edges, as the panel shows it. Notes come on any thread; the rest
// is the hardware's thread's.
class History {
  public:
    struct Line {
        std::chrono::microseconds time;
        std::string text;
    };
    // The percent that the DVR reported.
    struct Percent {
        std::chrono::microseconds time;
        int percent;
    };
    // What the unit's other applications said and heard.
    struct Word {
        std::chrono::microseconds time;
        bool request;  // raised by us; else a broadcast of the program
        std::string text;
    };

    explicit History(EventHub& events);

    // Files what has been noted since the last call; false when there was nothing.
    bool Update();

    const Latest<Line, 10'000>& log() const { return log_; }
    const Latest<LineEntry, 10'000>& traffic() const { return traffic_; }
    const Latest<Percent, 10'000>& percents() const { return percents_; }
    const Latest<Word, 200>& words() const { return words_; }

    // The folder that acts as the card that is in; empty when none is.
    const std::string& card_folder() const { return card_folder_; }

    void ClearLog() { log_.Clear(); }
    void ClearTraffic() { traffic_.Clear(); }

    // The latest line for the operator; empty when there is none.
    const std::string& message() const { return message_; }
    void DismissMessage() { message_.clear(); }

  private:
    void File(const TimedEvent& event);
    void FileFrame(LineEntry entry);

    std::mutex mutex_;
    std::vector<TimedEvent> notes_;  // guarded by mutex_

    LineMonitor line_;
    Latest<Line, 10'000> log_;
    Latest<LineEntry, 10'000> traffic_;
    Latest<Percent, 10'000> percents_;
    Latest<Word, 200> words_;
    std::string message_;
    std::string card_folder_;
    EventHub::Subscription subscription_;
};

}  // namespace unit
