#include "unit/board/power_coordinator.h"

namespace unit {
namespace {

constexpr PowerRequest kRequests[] = {
    {"suspend", L"_KESTA_Technology,Inc._All_APP_PowerSuspend_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerSuspend_Acknowledge_"},
    {"resume", L"_KESTA_Technology,Inc._All_APP_PowerResume_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerResume_Acknowledge_"},
    {"off", L"_KESTA_Technology,Inc._All_APP_PowerOFF_Request_",
     L"_KESTA_Technology,Inc._Sodrey_PowerOFF_Acknowledge_"},
};

}  // namespace

std::span<const PowerRequest> PowerRequests() {
    return kRequests;
}

DWORD PowerCoordinator::Raise(const PowerRequest& request) {
    HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, request.event);
    const bool exists = event != nullptr;
    if (!exists)
        event = CreateEventW(nullptr, FALSE, FALSE, request.event);
    if (!event)
        return GetLastError();
    if (!exists)
        created_.push_back(event);
    // Published first: the acknowledgement may come before the call returns.
    events_.Publish(PowerRequested{request.event});
    const DWORD error = SetEvent(event) ? ERROR_SUCCESS : GetLastError();
    if (exists)
        CloseHandle(event);
    return error;
}

void PowerCoordinator::CloseEvents() {
    for (const HANDLE event : created_)
        CloseHandle(event);
    created_.clear();
}

}  // namespace unit
