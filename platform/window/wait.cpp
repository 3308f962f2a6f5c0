#include "platform/kernel/wait.h"
#include "platform/kernel/api_call.h"

#include <algorithm>

#include "platform/kernel/scheduler.h"
#include "platform/window/retrieval.h"

using namespace platform;
using namespace platform::window;

// Returns while such messages wait, whether or not the caller has seen them before: it cannot sleep
// through one that it looked at with PM_NOREMOVE.
DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* handles, DWORD milliseconds,
                                  DWORD wake_mask, DWORD flags) {
    const kernel::ApiCall call("MsgWaitForMultipleObjectsEx");
    if (call.Fails())
        return WAIT_FAILED;
    if ((flags & ~MWMO_INPUTAVAILABLE) != 0 || count >= MAXIMUM_WAIT_OBJECTS) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return WAIT_FAILED;
    }
    std::vector<std::shared_ptr<kernel::Object>> objects;
    if (!kernel::CollectWaitObjects(handles, count, true, objects))
        return WAIT_FAILED;
    const kernel::Time deadline = kernel::DeadlineAfter(milliseconds);
    MessageFilter filter;
    filter.kinds = wake_mask;

    kernel::KernelLock lock = kernel::LockKernel();
    const std::shared_ptr<MessageQueue> queue = CurrentQueue(lock);
    const auto message_waits = [&] {
        if ((wake_mask & QS_SENDMESSAGE) != 0 && !queue->sent.empty())
            return true;
        return NextMessage(lock, *queue, filter, false).has_value();
    };
    kernel::Time until = deadline;
    // A timer that was armed meanwhile may be due before the wait would end.
    const auto interrupted = [&] {
        return message_waits() || NextTimed(lock, *queue, filter) < until;
    };
    for (;;) {
        until = std::min(deadline, NextTimed(lock, *queue, filter));
        const DWORD result = kernel::WaitForAny(lock, objects, interrupted, until);
        if (result != WAIT_TIMEOUT && result != WAIT_OBJECT_0 + count)
            return result;
        if (message_waits())
            return WAIT_OBJECT_0 + count;
        if (kernel::Now() >= deadline)
            return WAIT_TIMEOUT;
    }
}

DWORD MsgWaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL wait_all,
                                DWORD milliseconds, DWORD wake_mask) {
    const kernel::ApiCall call("MsgWaitForMultipleObjects");
    if (call.Fails())
        return WAIT_FAILED;
    return MsgWaitForMultipleObjectsEx(count, handles, milliseconds, wake_mask,
                                       wait_all ? MWMO_WAITALL : 0);
}
