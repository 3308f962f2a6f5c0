#include "platform/powermgr/power_notifications.h"

#include <msgqueue.h>
#include <pm.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/object.h"

namespace platform::powermgr {
namespace {

// What RequestPowerNotifications returns a handle of: the write end of the asker's queue.
class Request final : public kernel::Object {
  public:
    Request(HANDLE queue, DWORD flags) : queue_(queue), flags_(flags) {}
    ~Request() override { CloseMsgQueue(queue_); }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    void Deliver(DWORD message) const {
        if ((flags_ & message) == 0)
            return;
        POWER_BROADCAST record{};
        record.Message = message;
        WriteMsgQueue(queue_, &record, sizeof record, 0, 0);
    }

  private:
    const HANDLE queue_;
    const DWORD flags_;
};

// Guarded by the kernel lock; an entry goes stale with the last reference of its request.
std::vector<std::weak_ptr<Request>> g_requests;

}  // namespace

void Notify(DWORD message) {
    std::vector<std::shared_ptr<Request>> listeners;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const std::weak_ptr<Request>& request : g_requests)
            if (std::shared_ptr<Request> listener = request.lock())
                listeners.push_back(std::move(listener));
    }
    for (const std::shared_ptr<Request>& listener : listeners)
        listener->Deliver(message);
}

}  // namespace platform::powermgr

using namespace platform;
using powermgr::Request;

HANDLE RequestPowerNotifications(HANDLE queue, DWORD flags) {
    const kernel::ApiCall call("RequestPowerNotifications");
    if (call.Fails())
        return nullptr;
    if (flags == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    MSGQUEUEOPTIONS options{};
    options.dwSize = sizeof options;
    options.bReadAccess = FALSE;
    const HANDLE write_end = OpenMsgQueue(GetCurrentThread(), queue, &options);
    if (!write_end)
        return nullptr;
    const auto request = std::make_shared<Request>(write_end, flags);
    kernel::KernelLock lock = kernel::LockKernel();
    std::erase_if(powermgr::g_requests,
                  [](const std::weak_ptr<Request>& entry) { return entry.expired(); });
    powermgr::g_requests.push_back(request);
    return kernel::OpenHandle(lock, request);
}

DWORD StopPowerNotifications(HANDLE handle) {
    const kernel::ApiCall call("StopPowerNotifications");
    if (call.Fails())
        return GetLastError();
    if (!kernel::FindObjectAs<Request>(handle))
        return ERROR_INVALID_HANDLE;
    CloseHandle(handle);
    return ERROR_SUCCESS;
}
