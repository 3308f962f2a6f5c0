#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/device/stream_driver.h"
#include "unit/board/faults.h"
#include "unit/events/event_hub.h"

namespace unit {

// The stream drivers that the device manager has loaded, by name. Publishes every call of the
// program to a driver, and applies the drivers' faults. Any thread.
class DriverRegistry {
  public:
    // Both must outlive the drivers' streams.
    DriverRegistry(EventHub& events, Faults& faults) : events_(events), faults_(faults) {}

    // A driver whose requests through DeviceIoControl are published and can be refused. Before the
    // program starts.
    void Load(const std::wstring& name, std::shared_ptr<platform::device::StreamDriver> driver);
    // A driver of which only opening is published and can fail.
    void LoadSerial(const std::wstring& name,
                    std::shared_ptr<platform::device::StreamDriver> driver);

    // Null for a driver that is not loaded or is hidden by a fault.
    std::shared_ptr<platform::device::StreamDriver> Find(std::wstring_view name);
    std::vector<std::wstring> Names() const;

  private:
    EventHub& events_;
    Faults& faults_;
    mutable std::mutex mutex_;
    std::map<std::wstring, std::shared_ptr<platform::device::StreamDriver>, std::less<>> drivers_;
};

}  // namespace unit
