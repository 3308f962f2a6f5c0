#include "platform/kernel/event_queue.h"

namespace platform::kernel {

std::uint64_t EventQueue::Add(Time when, Action action) {
    const std::uint64_t id = ++last_id_;
    actions_.emplace(std::pair(when, id), std::move(action));
    when_.emplace(id, when);
    return id;
}

void EventQueue::Cancel(std::uint64_t id) {
    const auto entry = when_.find(id);
    if (entry == when_.end())
        return;
    actions_.erase({entry->second, id});
    when_.erase(entry);
}

Time EventQueue::NextDue() const {
    return actions_.empty() ? kNever : actions_.begin()->first.first;
}

EventQueue::Action EventQueue::TakeDue(Time now) {
    const auto first = actions_.begin();
    if (first == actions_.end() || first->first.first > now)
        return {};
    Action action = std::move(first->second);
    when_.erase(first->first.second);
    actions_.erase(first);
    return action;
}

}  // namespace platform::kernel
