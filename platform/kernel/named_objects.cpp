#include "platform/kernel/named_objects.h"

namespace platform::kernel {
namespace {

class StandIn final : public Object {
  public:
    explicit StandIn(NamedKind kind) : kind_(kind) {}

    NamedKind Kind() const override { return kind_; }

  private:
    const NamedKind kind_;
};

}  // namespace

std::shared_ptr<Object> FindNamed(KernelLock&, const std::wstring& name) {
    const auto entry = State().names.find(name);
    return entry == State().names.end() ? nullptr : entry->second.lock();
}

void PublishName(KernelLock&, const std::wstring& name, const std::shared_ptr<Object>& object) {
    std::erase_if(State().names, [](const auto& entry) { return entry.second.expired(); });
    State().names[name] = object;
}

std::shared_ptr<Object> FindNamedAnywhere(KernelLock& lock, const std::wstring& name) {
    if (std::shared_ptr<Object> own = FindNamed(lock, name))
        return own;
    lock.unlock();
    OtherProcesses* const others = CurrentBoard().other_processes();
    const NamedKind kind = others ? others->FindObject(name) : NamedKind::kNone;
    lock.lock();
    // Another thread may have made one meanwhile.
    std::shared_ptr<Object> own = FindNamed(lock, name);
    if (own || kind == NamedKind::kNone)
        return own;
    auto stand_in = std::make_shared<StandIn>(kind);
    PublishName(lock, name, stand_in);
    return stand_in;
}

NamedKind FindNamedKind(const std::wstring& name) {
    KernelLock lock = LockKernel();
    const std::shared_ptr<Object> object = FindNamed(lock, name);
    return object ? object->Kind() : NamedKind::kNone;
}

}  // namespace platform::kernel
