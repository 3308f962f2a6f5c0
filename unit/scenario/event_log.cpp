#include "unit/scenario/event_log.h"

#include <algorithm>

#include "unit/events/event_text.h"

namespace unit {

EventLog::EventLog(EventHub& events, std::size_t limit) : limit_(limit) {
    subscription_ = events.Subscribe([this](const TimedEvent& timed) {
        const std::scoped_lock lock(mutex_);
        if (IsTraced(timed.event) && events_.size() < limit_)
            events_.push_back(timed);
    });
}

std::size_t EventLog::Count() const {
    const std::scoped_lock lock(mutex_);
    return events_.size();
}

std::optional<std::size_t> EventLog::Find(std::size_t from,
                                          const std::function<bool(const Event&)>& matches) const {
    const std::scoped_lock lock(mutex_);
    for (std::size_t index = from; index < events_.size(); ++index)
        if (matches(events_[index].event))
            return index;
    return std::nullopt;
}

std::vector<std::string> EventLog::Latest(std::size_t max,
                                          const std::function<bool(const Event&)>& matches) const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> records;
    for (auto timed = events_.rbegin(); timed != events_.rend() && records.size() < max; ++timed)
        if (matches(timed->event))
            records.push_back(TraceRecord(*timed));
    std::ranges::reverse(records);
    return records;
}

}  // namespace unit
