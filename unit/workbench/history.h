#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "unit/events/event_hub.h"

namespace unit {

// The latest entries of an endless list.
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
    // The number of entries before the first one here.
    std::uint64_t dropped() const { return dropped_; }
    // The number of all entries so far.
    std::uint64_t count() const { return dropped_ + entries_.size(); }

  private:
    std::deque<Entry> entries_;
    std::uint64_t dropped_ = 0;
};

// What happened at the unit's external interfaces, sorted for the panel. Events come on any thread;
// everything else is for the host thread.
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
    // A power request of the unit's other applications, or a broadcast of the program.
    struct PowerMessage {
        std::chrono::microseconds time;
        bool is_request;
        std::string text;
    };

    explicit History(EventHub& events);

    // Sorts the events since the last call; false when there were none.
    bool Update();

    const Latest<Line, 10'000>& log() const { return log_; }
    const Latest<LineEntry, 10'000>& traffic() const { return traffic_; }
    // The faults that took effect, as in the debug output.
    const Latest<Line, 1000>& faults() const { return faults_; }
    const Latest<Percent, 10'000>& percents() const { return percents_; }
    const Latest<PowerMessage, 200>& power_messages() const { return power_messages_; }

    // The folder that acts as the inserted card; empty without a card.
    const std::string& card_folder() const { return card_folder_; }

    void ClearLog() { log_.Clear(); }
    void ClearTraffic() { traffic_.Clear(); }

    // The latest message for the operator; empty when there is none.
    const std::string& message() const { return message_; }
    void DismissMessage() { message_.clear(); }

  private:
    void File(const TimedEvent& event);
    void FileFrame(LineEntry entry);

    std::mutex mutex_;
    std::vector<TimedEvent> notes_;  // guarded by mutex_

    Latest<Line, 10'000> log_;
    Latest<LineEntry, 10'000> traffic_;
    Latest<Line, 1000> faults_;
    Latest<Percent, 10'000> percents_;
    Latest<PowerMessage, 200> power_messages_;
    std::string message_;
    std::string card_folder_;
    EventHub::Subscription subscription_;
};

}  // namespace unit
