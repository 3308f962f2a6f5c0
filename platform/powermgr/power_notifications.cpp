#include "platform/powermgr/power_notifications.h"

#include <pm.h>

#include <memory>
#include <span>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/message_queue.h"
#include "platform/kernel/object.h"

namespace platform::powermgr {
namespace {

// The object behind a handle of RequestPowerNotifications.
class Request final : public kernel::Object {
  public:
    Request(std::unique_ptr<kernel::QueueWriter> queue, DWORD flags)
        : queue_(std::move(queue)), flags_(flags) {}

    void Deliver(DWORD message) const {
        if ((flags_ & message) == 0)
            return;
        POWER_BROADCAST record{};
        record.Message = message;
        queue_->Write(std::as_bytes(std::span(&record, 1)));
    }

  private:
    const std::unique_ptr<kernel::QueueWriter> queue_;
    const DWORD flags_;
};

// Guarded by the kernel lock.
std::vector<std::weak_ptr<Request>> g_requests;

}  // namespace

void Notify(DWORD message) {
    std::vector<std::shared_ptr<Request>> requests;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const std::weak_ptr<Request>& entry : g_requests)
            if (std::shared_ptr<Request> request = entry.lock())
                requests.push_back(std::move(request));
    }
    for (const std::shared_ptr<Request>& request : requests)
        request->Deliver(message);
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
    auto writer = kernel::QueueWriter::Open(queue);
    if (!writer)
        return nullptr;
    const auto request = std::make_shared<Request>(std::move(writer), flags);
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
