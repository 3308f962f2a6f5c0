#pragma once

#include <windows.h>

#include <span>
#include <string_view>
#include <vector>

#include "unit/events/event_hub.h"

namespace unit {

// A request that the unit's coordinator makes of all applications by raising a named event, and the
// message that each application broadcasts in answer.
struct PowerRequest {
    std::string_view name;  // "suspend"
    const wchar_t* event;
    const wchar_t* acknowledgement;
};
std::span<const PowerRequest> PowerRequests();

// The unit's power coordinator. Hardware's thread, while the platform is booted.
class PowerCoordinator {
  public:
    explicit PowerCoordinator(EventHub& events) : events_(events) {}
    PowerCoordinator(const PowerCoordinator&) = delete;
    PowerCoordinator& operator=(const PowerCoordinator&) = delete;

    // Opens the request's event, makes and keeps it where no application has, and raises it.
    // ERROR_SUCCESS, or the error of the call that failed.
    DWORD Raise(const PowerRequest& request);
    // Closes the events that it made; to be called before the platform shuts down.
    void LetGo();

  private:
    EventHub& events_;
    std::vector<HANDLE> made_;
};

}  // namespace unit
