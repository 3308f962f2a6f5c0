#include "platform/kernel/named_objects.h"

namespace platform::kernel {

std::shared_ptr<Object> FindNamed(KernelLock&, const std::wstring& name) {
    const auto entry = State().names.find(name);
    return entry == State().names.end() ? nullptr : entry->second.lock();
}

void PublishName(KernelLock&, const std::wstring& name, const std::shared_ptr<Object>& object) {
    std::erase_if(State().names, [](const auto& entry) { return entry.second.expired(); });
    State().names[name] = object;
}

}  // namespace platform::kernel
