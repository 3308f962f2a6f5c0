#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/device/stream_driver.h"
#include "platform/kernel/clock.h"
#include "unit/events/event_hub.h"

namespace unit {

// The stream drivers that the device manager has loaded, and what is wrong with them. Tells every
// call of the program to a driver. Any thread.
class DriverRegistry {
  public:
    explicit DriverRegistry(EventHub& events) : events_(events) {}

    // The driver takes requests through DeviceIoControl, which are told and can be refused. Before
    // the program starts.
    void Load(std::wstring name, std::shared_ptr<platform::device::StreamDriver> driver);
    // The driver's own streams are handed out as they are; only its opening is told.
    void LoadSerial(std::wstring name, std::shared_ptr<platform::device::StreamDriver> driver);

    // Null for a driver that is not loaded, is missing, or has not appeared yet.
    std::shared_ptr<platform::device::StreamDriver> Find(std::wstring_view name);
    std::vector<std::wstring> Names() const;

    // The driver cannot be opened until this time: kNever for a driver that is missing. What is
    // open already stays open.
    void HideUntil(std::wstring_view name, platform::kernel::Time time);

    // The next `times` requests (of that control code alone, when one is given) fail with `error`
    // and do nothing.
    void Refuse(std::wstring_view name, std::optional<DWORD> code, DWORD error, unsigned times);

    // All drivers are loaded and refuse nothing.
    void Clear();

    // What is wrong, a line a driver: "SCA0: missing".
    std::vector<std::string> Faults() const;

    // For the drivers' wrappers: ERROR_SUCCESS, or the error that this request is refused with.
    DWORD Refusal(const std::wstring& name, DWORD code);
    void Tell(DriverCalled call) { events_.Publish(std::move(call)); }

  private:
    struct Refusing {
        std::optional<DWORD> code;
        DWORD error;
        unsigned times;
    };
    struct Slot {
        std::shared_ptr<platform::device::StreamDriver> driver;
        platform::kernel::Time hidden_until{};
        std::optional<Refusing> refusing;
    };

    void Put(std::wstring name, std::shared_ptr<platform::device::StreamDriver> driver);

    EventHub& events_;
    mutable std::mutex mutex_;
    std::map<std::wstring, Slot, std::less<>> slots_;
};

}  // namespace unit
