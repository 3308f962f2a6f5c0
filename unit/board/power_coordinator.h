#pragma once

#include <windows.h>

#include <span>
#include <string_view>
#include <vector>

#include "unit/events/event_hub.h"

namespace unit {

// A power request: the unit's coordinator sets its named event, and each application broadcasts the
// acknowledgement.
struct PowerRequest {
    std::string_view name;  // "suspend"
    const wchar_t* event;
    const wchar_t* acknowledgement;
};
std::span<const PowerRequest> PowerRequests();

// The unit's power coordinator. Host thread, while the platform is booted.
class PowerCoordinator {
  public:
    explicit PowerCoordinator(EventHub& events) : events_(events) {}
    PowerCoordinator(const PowerCoordinator&) = delete;
    PowerCoordinator& operator=(const PowerCoordinator&) = delete;

    // Sets the request's event; creates and keeps the event if no application has. ERROR_SUCCESS,
    // or the error of the call that failed.
    DWORD Raise(const PowerRequest& request);
    // Closes the events that it created. Must be called before the platform shuts down.
    void CloseEvents();

  private:
    EventHub& events_;
    std::vector<HANDLE> created_;
};

}  // namespace unit
