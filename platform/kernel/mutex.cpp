#include "platform/kernel/api_call.h"
#include "platform/kernel/named_objects.h"
#include "platform/kernel/scheduler.h"
#include "platform/kernel/thread.h"

namespace platform::kernel {
namespace {

class Mutex final : public Object {
  public:
    NamedKind Kind() const override { return NamedKind::kMutex; }
    bool Waitable() const override { return true; }

    bool Signalled(const Thread& waiter) const override {
        const std::shared_ptr<Thread> owner = owner_.lock();
        return count_ == 0 || !owner || owner->ended || owner.get() == &waiter;
    }

    bool Consume(Thread&) override {
        const std::shared_ptr<Thread> self = CurrentThreadShared();
        const std::shared_ptr<Thread> owner = owner_.lock();
        const bool abandoned = count_ != 0 && owner != self;
        count_ = abandoned ? 1 : count_ + 1;
        owner_ = self;
        return abandoned;
    }

    bool Release() {
        if (count_ == 0 || owner_.lock() != CurrentThreadShared())
            return false;
        --count_;
        return true;
    }

  private:
    std::weak_ptr<Thread> owner_;
    unsigned count_ = 0;
};

}  // namespace
}  // namespace platform::kernel

using namespace platform::kernel;

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initial_owner, LPCWSTR name) {
    const ApiCall call("CreateMutexW");
    if (call.Fails())
        return nullptr;
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> mutex = CreateNamed(lock, name, NamedKind::kMutex, [&] {
        auto made = std::make_shared<Mutex>();
        if (initial_owner)
            made->Consume(CurrentThread());
        return made;
    });
    return mutex ? OpenHandle(lock, std::move(mutex)) : nullptr;
}

BOOL ReleaseMutex(HANDLE handle) {
    const ApiCall call("ReleaseMutex");
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Mutex> mutex = FindObjectAs<Mutex>(handle);
    if (!mutex)
        return FALSE;
    KernelLock lock = LockKernel();
    if (!mutex->Release()) {
        SetLastError(ERROR_NOT_OWNER);
        return FALSE;
    }
    Wake(lock);
    return TRUE;
}
