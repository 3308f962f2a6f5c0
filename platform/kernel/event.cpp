#include "platform/kernel/api_call.h"
#include "platform/kernel/named_objects.h"
#include "platform/kernel/scheduler.h"

namespace platform::kernel {
namespace {

class Event final : public Object {
  public:
    Event(bool manual_reset, bool signalled) : manual_reset_(manual_reset), signalled_(signalled) {}

    NamedKind Kind() const override { return NamedKind::kEvent; }
    bool Waitable() const override { return true; }
    bool Signalled(const Thread&) const override { return signalled_; }
    bool Consume(Thread&) override {
        if (!manual_reset_)
            signalled_ = false;
        return false;
    }
    void Change(bool signalled) { signalled_ = signalled; }

  private:
    const bool manual_reset_;
    bool signalled_;
};

}  // namespace
}  // namespace platform::kernel

using namespace platform::kernel;

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
    const ApiCall call("CreateEventW");
    if (call.Fails())
        return nullptr;
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> event = CreateNamed(lock, name, NamedKind::kEvent, [&] {
        return std::make_shared<Event>(manual_reset != 0, initial_state != 0);
    });
    return event ? OpenHandle(lock, std::move(event)) : nullptr;
}

HANDLE OpenEventW(DWORD, BOOL, LPCWSTR name) {
    const ApiCall call("OpenEventW");
    if (call.Fails())
        return nullptr;
    if (!name) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    KernelLock lock = LockKernel();
    std::shared_ptr<Object> event = FindNamedAnywhere(lock, name);
    if (!event || event->Kind() != NamedKind::kEvent) {
        SetLastError(event ? ERROR_INVALID_HANDLE : ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    return OpenHandle(lock, std::move(event));
}

BOOL EventModify(HANDLE handle, DWORD function) {
    const ApiCall call(function == EVENT_SET ? CallId("SetEvent") : CallId("ResetEvent"));
    if (call.Fails())
        return FALSE;
    const std::shared_ptr<Event> event = FindObjectAs<Event>(handle);
    if (!event)
        return FALSE;
    if (function != EVENT_SET && function != EVENT_RESET) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    KernelLock lock = LockKernel();
    event->Change(function == EVENT_SET);
    Wake(lock);
    return TRUE;
}
