#include "unit/board/virtual_unit.h"

#include <pm.h>

#include <algorithm>
#include <utility>

#include "platform/device/serial_port.h"
#include "platform/gdi/gdi.h"
#include "platform/kernel/scheduler.h"
#include "platform/powermgr/power_notifications.h"
#include "platform/resource/module.h"
#include "unit/board/task_bar.h"
#include "unit/devices/dvr_reset_driver.h"
#include "unit/devices/request_record.h"
#include "unit/events/event_text.h"
#include "unit/picture/screen_mixer.h"

namespace unit {

namespace kernel = platform::kernel;
namespace window = platform::window;

namespace {

constexpr wchar_t kProgramPath[] = L"\\Tolvane\\Tolvane.exe";

// The HAL's request to enter suspend, and its argument.
constexpr DWORD kEnterSuspend = 0x01012020;
constexpr DWORD kSuspendWord = 0x5A5A;

// Interval between requests to close.
constexpr auto kAskAgain = std::chrono::seconds(1);

// How long the unit's other applications may take to end.
constexpr auto kOtherLimit = std::chrono::seconds(5);

}  // namespace

VirtualUnit::VirtualUnit(const Options& options, Program program, DebugLog& log,
                         std::function<void(const std::string&)> say)
    : image_(std::move(program)),
      log_(log),
      say_([this, say = std::move(say)](const std::string& line) {
          say(line);
          events_.Publish(OperatorMessage{line});
      }),
      name_(options.name),
      kernel_options_(options.kernel) {
    kernel::Boot(options.kernel, *this);
    window::Start();
    supply_.ac_line_status = options.external_power ? 1 : 0;
    scaler_ = std::make_shared<Scaler>([this] { ScreenChanged(); });
    dvr_ = std::make_unique<DvrPort>(
        options.dvr, faults_.shared_line(), say_,
        [this](Direction direction, std::span<const std::uint8_t> bytes) {
            events_.Publish(LineBytes{direction, {bytes.begin(), bytes.end()}});
        });
    faults_.SetDvr(dvr_->dvr());
    LoadDrivers(options);
    log_.AddListener([this](std::chrono::microseconds, const std::string& line) {
        events_.Publish(LineLogged{line});
    });
    window::ObserveBroadcasts([this](UINT message, WPARAM wparam, LPARAM lparam) {
        events_.Publish(
            BroadcastPosted{window::RegisteredMessageName(message), message, wparam, lparam});
    });

    std::string problem;
    if (!platform::resource::SetModule(image_.resources, kProgramPath, problem))
        Say("the program's resources cannot be used: " + problem);
    for (const WORD id : options.missing_bitmaps)
        platform::resource::Hide(RT_BITMAP, MAKEINTRESOURCEW(id));
}

VirtualUnit::~VirtualUnit() {
    window::End();
    platform::gdi::EndProgram();
    dvr_.reset();
    power_coordinator_.CloseEvents();
    kernel::Shutdown();
}

void VirtualUnit::LoadDrivers(const Options& options) {
    if (const auto line = dvr_->line())
        drivers_.LoadSerial(L"COM9:", std::make_shared<platform::device::SerialDriver>(line));
    drivers_.Load(L"DVR1:", std::make_shared<DvrResetDriver>(
                                [this] { kernel::At(kernel::Now(), [this] { ResetDvr(); }); }));
    drivers_.Load(L"SCA0:", scaler_);
    for (const auto& [name, driver] : options.drivers)
        drivers_.LoadSerial(name, driver);
    for (const std::wstring& name : options.missing_drivers)
        faults_.HideDriver(name, kernel::kNever);
}

void VirtualUnit::Start() {
    if (dvr_->dvr())
        dvr_->dvr()->PowerOn();
    StartTaskBar();
    program_.Start(image_.entry);
}

bool VirtualUnit::RunUntil(const std::function<bool()>& done, std::chrono::seconds limit) {
    const kernel::Time deadline = kernel::Now() + limit;
    const kernel::EventId alarm = kernel::At(deadline, [] {});
    kernel::RunHostThread([&] { return done() || kernel::Now() >= deadline; });
    kernel::Cancel(alarm);
    return done();
}

bool VirtualUnit::CloseUntil(const std::function<void()>& ask, const std::function<bool()>& ended,
                             std::chrono::seconds limit) {
    const kernel::Time deadline = kernel::Now() + limit;
    while (!ended() && kernel::Now() < deadline) {
        ask();
        RunUntil(ended, kAskAgain);
    }
    return ended();
}

bool VirtualUnit::Close(std::chrono::seconds limit) {
    if (on_closing_)
        on_closing_();
    // The program needs time to end.
    ResumeClock();
    CloseUntil(
        ProgramHost::CloseWindow, [this] { return !program_.running(); }, limit * time_scale());
    // An application that is still starting has no window to close yet: ask again.
    const bool all_ended = CloseUntil(
        CloseTaskBar, [] { return kernel::ThreadCount() == 0; }, kOtherLimit * time_scale());
    power_coordinator_.CloseEvents();
    const std::pair<const char*, std::size_t> counts[] = {
        {"threads", kernel::ThreadCount()},
        {"handles", kernel::HandleCount() - ProgramHost::HandlesKept()},
        {"windows", window::TopLevelWindows().size()},
        {"device contexts", platform::gdi::DeviceContextCount()},
        {"drawing objects", platform::gdi::DrawingObjectCount()}};
    for (const auto& [what, count] : counts)
        if (count != 0)
            leftovers_ += (leftovers_.empty() ? "" : ", ") + std::to_string(count) + " " + what;
    return all_ended;
}

void VirtualUnit::Touch(window::Touch touch, int x, int y) {
    if (suspended_)
        return;
    events_.Publish(FingerMoved{touch, x, y});
    window::TouchScreen(touch, x, y);
}

void VirtualUnit::InsertCard(const std::string& folder) {
    if (dvr_->dvr() && dvr_->dvr()->InsertCard(folder))
        events_.Publish(CardMoved{true, folder});
}

void VirtualUnit::RemoveCard() {
    if (dvr_->dvr() && dvr_->dvr()->RemoveCard())
        events_.Publish(CardMoved{false, {}});
}

std::shared_future<std::string> VirtualUnit::ResetDvr() {
    events_.Publish(DvrReset{});
    return dvr_->Reset();
}

void VirtualUnit::ChangeSupply(const std::function<void(platform::PowerSupply&)>& change) {
    platform::PowerSupply now;
    {
        const std::scoped_lock lock(mutex_);
        change(supply_);
        now = supply_;
    }
    events_.Publish(SupplyChanged{now});
    platform::powermgr::Notify(PBT_POWERSTATUSCHANGE);
}

void VirtualUnit::SetExternalPower(bool connected) {
    ChangeSupply(
        [connected](platform::PowerSupply& supply) { supply.ac_line_status = connected ? 1 : 0; });
}

void VirtualUnit::SetBattery(BYTE flag, BYTE percent) {
    ChangeSupply([flag, percent](platform::PowerSupply& supply) {
        supply.battery_flag = flag;
        supply.battery_life_percent = percent;
    });
}

void VirtualUnit::SetSupply(const platform::PowerSupply& supply) {
    ChangeSupply([&supply](platform::PowerSupply& changed) { changed = supply; });
}

platform::PowerSupply VirtualUnit::supply() const {
    const std::scoped_lock lock(mutex_);
    return supply_;
}

bool VirtualUnit::external_power() const {
    const std::scoped_lock lock(mutex_);
    return supply_.ac_line_status == 1;
}

Picture VirtualUnit::TakePicture(Picture reused) {
    if (suspended_)
        return {
            window::kScreenWidth, window::kScreenHeight,
            std::vector<std::uint32_t>(std::size_t{window::kScreenWidth} * window::kScreenHeight)};
    const ScalerState scaler = scaler_->state();
    const bool feeds = dvr_->dvr() && dvr_->dvr()->HasPicture();
    const Picture& video =
        scaler.VideoShows() && feeds ? video_scene_.At(kernel::Now()) : NoSignal();
    return MixPlanes(Screen(), video, scaler, std::move(reused));
}

const platform::gdi::Surface& VirtualUnit::Screen() {
    const std::uint64_t version = screen_version_;
    if (version != composed_version_)
        composed_ = window::ComposeScreen();
    composed_version_ = version;
    return composed_;
}

bool VirtualUnit::JumpClock(kernel::Duration forward) {
    if (forward.count() < 0 || forward > kernel::kLongestJump)
        return false;
    events_.Publish(ClockJumped{forward});
    return kernel::JumpClock(forward);
}

int VirtualUnit::time_scale() const {
    return std::max(1, static_cast<int>(kernel::ClockSpeed()));
}

bool VirtualUnit::StepClock(std::function<void(const TimedEvent&)> done) {
    if (kernel_options_.mode == kernel::Mode::kSimulated)
        return false;
    const int step = ++steps_;
    // Subscribed before the clock runs: the event may come at once.
    step_ = events_.Subscribe(
        [this, step, done = std::move(done), stepped = false](const TimedEvent& timed) mutable {
            if (stepped || !IsTraced(timed.event))
                return;
            stepped = true;
            kernel::PauseClock();
            kernel::At(timed.time, [this, step, done, timed] {
                if (step == steps_)
                    step_ = {};
                if (done)
                    done(timed);
            });
        });
    return kernel::ResumeClock();
}

bool VirtualUnit::PauseClock() {
    ++steps_;
    step_ = {};
    return kernel::PauseClock();
}

bool VirtualUnit::ResumeClock() {
    ++steps_;
    step_ = {};
    return kernel::ResumeClock();
}

void VirtualUnit::WakeUp() {
    if (!suspended_)
        return;
    SetSuspended(false);
    platform::powermgr::Notify(PBT_RESUME);
}

void VirtualUnit::SetSuspended(bool suspended) {
    suspended_ = suspended;
    events_.Publish(suspended ? Event(UnitSuspended{}) : Event(UnitWoken{}));
    ScreenChanged();
}

std::shared_ptr<platform::device::StreamDriver> VirtualUnit::FindDriver(std::wstring_view name) {
    return drivers_.Find(name);
}

bool VirtualUnit::ReadPowerSupply(platform::PowerSupply& supply) {
    const std::scoped_lock lock(mutex_);
    supply = supply_;
    return !faults_.battery_driver_fails();
}

DWORD VirtualUnit::HalRequest(DWORD code, std::span<const std::byte> input,
                              std::span<std::byte> output, DWORD&) {
    if (code != kEnterSuspend || faults_.hal_refuses())
        return ERROR_NOT_SUPPORTED;
    DWORD word = 0;
    if (!output.empty() || ReadRecord(input, word) != ERROR_SUCCESS || word != kSuspendWord)
        return ERROR_INVALID_PARAMETER;
    return ERROR_SUCCESS;
}

DWORD VirtualUnit::ChangeSystemPower(DWORD state_flags, DWORD) {
    if ((state_flags & (POWER_STATE_OFF | POWER_STATE_SUSPEND)) == 0)
        return ERROR_INVALID_PARAMETER;
    SetSuspended(true);
    return ERROR_SUCCESS;
}

void VirtualUnit::DebugOutput(std::wstring_view text) {
    log_.Write(text, kernel::Now());
}

void VirtualUnit::ScreenChanged() {
    ++screen_version_;
    events_.Publish(ScreenDrawn{});
    if (on_screen_change_)
        on_screen_change_();
}

}  // namespace unit
