#include "dvrsim/host.h"

#include <utility>

namespace dvrsim {

std::uint64_t ScheduledActions::After(std::chrono::microseconds delay,
                                      std::function<void()> action) {
    const std::uint64_t key = ++last_key_;
    host_ids_[key] = host_.After(delay, [this, key, action = std::move(action)] {
        host_ids_.erase(key);
        action();
    });
    return key;
}

void ScheduledActions::Cancel(std::uint64_t key) {
    const auto found = host_ids_.find(key);
    if (found == host_ids_.end())
        return;
    host_.Cancel(found->second);
    host_ids_.erase(found);
}

void ScheduledActions::CancelAll() {
    for (const auto& [key, host_id] : host_ids_)
        host_.Cancel(host_id);
    host_ids_.clear();
}

}  // namespace dvrsim
