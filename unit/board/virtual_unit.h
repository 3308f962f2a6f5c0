#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "platform/board.h"
#include "platform/kernel/kernel.h"
#include "platform/window/screen.h"
#include "unit/board/debug_log.h"
#include "unit/board/driver_registry.h"
#include "unit/board/faults.h"
#include "unit/board/power_coordinator.h"
#include "unit/board/program_host.h"
#include "unit/devices/dvr_port.h"
#include "unit/devices/scaler.h"
#include "unit/events/event_hub.h"
#include "unit/picture/picture.h"
#include "unit/picture/video_scene.h"

namespace unit {

// The program: its entry point and the resources of its executable.
struct Program {
    ProgramHost::Entry entry;
    std::span<const std::byte> resources;
};

// The whole unit: the platform's drivers and power supply, the DVR, the task bar and the program.
// Created, used and destroyed on the host thread, which is the thread that constructs it. The
// platform calls the functions of Board on any thread.
class VirtualUnit final : public platform::Board {
  public:
    struct Options {
        std::string name = "unit";
        platform::kernel::Options kernel;
        DvrPort::Options dvr;
        // Drivers that are missing ("COM9:", "DVR1:", "SCA0:") and pictures that cannot be loaded.
        std::vector<std::wstring> missing_drivers;
        std::vector<WORD> missing_bitmaps;
        bool external_power = true;
        // Drivers that replace the unit's own.
        std::map<std::wstring, std::shared_ptr<platform::device::StreamDriver>> drivers;
    };

    // `say` is given one line for the operator, `log` the program's debug output. Any thread.
    VirtualUnit(const Options& options, Program program, DebugLog& log,
                std::function<void(const std::string&)> say);
    ~VirtualUnit() override;

    // Powers the DVR on and starts the applications.
    void Start();

    // Closes the program's window and waits for all applications to end, for the program up to
    // `limit` (of host time when the unit runs faster than the host). Returns whether all ended.
    // Afterwards only the destructor may be called.
    bool Close(std::chrono::seconds limit);

    // Called on the host thread when Close begins. Set before.
    void OnClosing(std::function<void()> begins) { on_closing_ = std::move(begins); }

    // Everything that happens at the unit's external interfaces. Any thread.
    EventHub& events() { return events_; }
    Faults& faults() { return faults_; }
    DriverRegistry& drivers() { return drivers_; }
    PowerCoordinator& power_coordinator() { return power_coordinator_; }
    ProgramHost& program() { return program_; }
    DvrPort& dvr() { return *dvr_; }
    Scaler& scaler() { return *scaler_; }

    // What the operator does.
    void Touch(platform::window::Touch touch, int x, int y);
    void InsertCard(const std::string& folder);
    void RemoveCard();
    void SetExternalPower(bool connected);
    bool external_power() const;
    // The battery's flag and charge as the battery driver reports them (SYSTEM_POWER_STATUS_EX2).
    void SetBattery(BYTE flag, BYTE percent);
    void SetSupply(const platform::PowerSupply& supply);
    platform::PowerSupply supply() const;
    // Pulls the DVR's reset wire; see DvrPort::Reset.
    std::shared_future<std::string> ResetDvr();

    // What the screen shows now, in the memory of `reused`.
    Picture TakePicture(Picture reused = {});
    // The graphics plane now, composed only after a change; valid until the next call.
    const platform::gdi::Surface& Screen();
    // Grows with every change of the screen. Any thread.
    std::uint64_t screen_version() const { return screen_version_; }
    // Called on any thread, under locks, when the screen changed. Set before Start.
    void OnScreenChange(std::function<void()> changed) { on_screen_change_ = std::move(changed); }
    // The other processes of the unit; by default there are none. Set before Start.
    void SetOtherProcesses(std::shared_ptr<platform::OtherProcesses> others) {
        other_processes_ = std::move(others);
    }
    bool suspended() const { return suspended_; }
    // The unit's speed relative to the host's clock, at least 1; 1 in simulated time.
    int time_scale() const;
    const std::string& name() const { return name_; }
    const platform::kernel::Options& kernel_options() const { return kernel_options_; }
    // Presses the unit's power button, which wakes a suspended unit.
    void WakeUp();

    // See kernel::JumpClock.
    bool JumpClock(platform::kernel::Duration forward);
    // Lets the clock run until the next event at an external interface, then pauses it. `done` is
    // called on the host thread with the event, unless the clock is resumed or the unit ends
    // before. False in simulated time.
    bool StepClock(std::function<void(const TimedEvent&)> done);
    // Pauses or resumes the clock, which ends a step. False in simulated time.
    bool PauseClock();
    bool ResumeClock();

    void Say(const std::string& line) const { say_(line); }

    // Handles, threads, windows and drawing objects left after Close, in one line; empty if none.
    const std::string& leftovers() const { return leftovers_; }

    // platform::Board
    std::shared_ptr<platform::device::StreamDriver> FindDriver(std::wstring_view name) override;
    bool ReadPowerSupply(platform::PowerSupply& supply) override;
    DWORD HalRequest(DWORD code, std::span<const std::byte> input, std::span<std::byte> output,
                     DWORD& returned) override;
    DWORD ChangeSystemPower(DWORD state_flags, DWORD options) override;
    platform::OtherProcesses* other_processes() override { return other_processes_.get(); }
    void DebugOutput(std::wstring_view text) override;
    void ScreenChanged() override;

  private:
    void LoadDrivers(const Options& options);
    void ChangeSupply(const std::function<void(platform::PowerSupply&)>& change);
    void SetSuspended(bool suspended);
    bool RunUntil(const std::function<bool()>& done, std::chrono::seconds limit);
    bool CloseUntil(const std::function<void()>& ask, const std::function<bool()>& ended,
                    std::chrono::seconds limit);

    const Program image_;
    DebugLog& log_;
    const std::function<void(const std::string&)> say_;
    EventHub events_;
    const std::string name_;
    const platform::kernel::Options kernel_options_;
    ProgramHost program_;
    std::shared_ptr<platform::OtherProcesses> other_processes_;
    std::shared_ptr<Scaler> scaler_;
    Faults faults_{events_};
    std::unique_ptr<DvrPort> dvr_;

    DriverRegistry drivers_{events_, faults_};
    PowerCoordinator power_coordinator_{events_};

    mutable std::mutex mutex_;
    platform::PowerSupply supply_;

    std::atomic<std::uint64_t> screen_version_{1};
    std::uint64_t composed_version_ = 0;
    platform::gdi::Surface composed_{platform::window::kScreenWidth,
                                     platform::window::kScreenHeight};
    VideoScene video_scene_;
    // Of the step that runs; the subscription is renewed and cancelled on the host thread.
    EventHub::Subscription step_;
    int steps_ = 0;
    std::atomic<bool> suspended_{false};
    std::function<void()> on_screen_change_;
    std::function<void()> on_closing_;
    std::string leftovers_;
};

}  // namespace unit
