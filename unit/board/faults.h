#pragma once

#include <atomic>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dvrsim/dvr.h"
#include "platform/kernel/call_faults.h"
#include "unit/events/event_hub.h"
#include "unit/line/line_faults.h"

namespace unit {

// Requests of a driver that fail and have no effect.
struct DriverRefusal {
    std::optional<DWORD> code;  // only requests with this control code
    DWORD error = ERROR_GEN_FAILURE;
    unsigned times = 1;

    bool operator==(const DriverRefusal&) const = default;
};

// All faults of the unit in one place: of the program's calls, the drivers, the HAL, the battery
// driver, the serial line and the simulated DVR. Any thread; what concerns the DVR on the host
// thread.
class Faults {
  public:
    explicit Faults(EventHub& events);

    // Calls of the program, see platform/kernel/call_faults.h. FailCall returns an empty text, or
    // one line that says why there can be no such fault.
    static std::string FailCall(const platform::kernel::CallFault& fault) {
        return platform::kernel::AddCallFault(fault);
    }
    static std::vector<platform::kernel::CallFault> calls() {
        return platform::kernel::PendingCallFaults();
    }

    // The driver cannot be opened until this time, kNever for good; open handles stay open.
    void HideDriver(std::wstring_view name, platform::kernel::Time until);
    // Refusals add up: a request takes the first one that applies to it.
    void RefuseRequests(std::wstring_view name, const DriverRefusal& refusal);
    bool IsHidden(std::wstring_view name) const;
    // ERROR_SUCCESS, or the error that this request is refused with; counts it.
    DWORD TakeRefusal(std::wstring_view name, DWORD code);

    void SetHalRefuses(bool refuses);
    bool hal_refuses() const { return hal_refuses_; }
    void SetBatteryDriverFails(bool fails);
    bool battery_driver_fails() const { return battery_driver_fails_; }

    LineFaults& line() { return *line_; }
    const std::shared_ptr<LineFaults>& shared_line() const { return line_; }

    // The simulated DVR, or null. Before the program starts.
    void SetDvr(dvrsim::Dvr* dvr) { dvr_ = dvr; }

    // Every fault that is set, as the command that sets what is left of it. Host thread.
    std::vector<std::string> List() const;
    // Clears every fault. Host thread.
    void Clear();

  private:
    struct DriverFaults {
        platform::kernel::Time hidden_until{};
        std::deque<DriverRefusal> refusals;
    };

    EventHub& events_;
    const std::shared_ptr<LineFaults> line_ = std::make_shared<LineFaults>();
    dvrsim::Dvr* dvr_ = nullptr;
    std::atomic<bool> hal_refuses_{false};
    std::atomic<bool> battery_driver_fails_{false};
    mutable std::mutex mutex_;
    std::map<std::wstring, DriverFaults, std::less<>> drivers_;
};

}  // namespace unit
