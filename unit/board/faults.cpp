#include "unit/board/faults.h"

#include <algorithm>
#include <cstdio>

#include "control/words.h"
#include "dvrsim/commands/dvr_commands.h"
#include "platform/kernel/text.h"
#include "unit/line/fault_text.h"

namespace unit {

namespace kernel = platform::kernel;

namespace {

std::string Times(std::uint64_t times) {
    if (times == kernel::kForEver)
        return " always";
    return times == 1 ? "" : " times " + std::to_string(times);
}

std::string Error(DWORD error) {
    return " error " + std::to_string(error);
}

std::string CommandOf(const kernel::CallFault& fault) {
    return (fault.call.empty() ? "fault any-call" : "fault call " + fault.call) +
           (fault.skip == 0 ? "" : " after " + std::to_string(fault.skip)) + Times(fault.times) +
           (fault.error ? Error(*fault.error) : "");
}

std::string CommandOf(const DriverRefusal& refusal) {
    char code[24] = "";
    if (refusal.code)
        std::snprintf(code, sizeof code, " code 0x%X", *refusal.code);
    return " refuses" + std::string(code) + Error(refusal.error) + Times(refusal.times);
}

}  // namespace

Faults::Faults(EventHub& events) : events_(events) {
    line_->OnApplied([this](const std::string& text) { events_.Publish(FaultApplied{text}); });
}

void Faults::HideDriver(std::wstring_view name, kernel::Time until) {
    const std::scoped_lock lock(mutex_);
    drivers_[std::wstring(name)].hidden_until = until;
}

void Faults::RefuseRequests(std::wstring_view name, const DriverRefusal& refusal) {
    const std::scoped_lock lock(mutex_);
    drivers_[std::wstring(name)].refusals.push_back(refusal);
}

bool Faults::IsHidden(std::wstring_view name) const {
    const std::scoped_lock lock(mutex_);
    const auto driver = drivers_.find(name);
    return driver != drivers_.end() && kernel::Now() < driver->second.hidden_until;
}

DWORD Faults::TakeRefusal(std::wstring_view name, DWORD code) {
    const std::scoped_lock lock(mutex_);
    const auto driver = drivers_.find(name);
    if (driver == drivers_.end())
        return ERROR_SUCCESS;
    std::deque<DriverRefusal>& refusals = driver->second.refusals;
    const auto refusal = std::ranges::find_if(
        refusals, [code](const DriverRefusal& each) { return each.code.value_or(code) == code; });
    if (refusal == refusals.end())
        return ERROR_SUCCESS;
    const DWORD error = refusal->error;
    if (--refusal->times == 0)
        refusals.erase(refusal);
    return error;
}

void Faults::SetHalRefuses(bool refuses) {
    hal_refuses_ = refuses;
    events_.Publish(HalSwitched{refuses});
}

void Faults::SetBatteryDriverFails(bool fails) {
    battery_driver_fails_ = fails;
    events_.Publish(BatteryDriverSwitched{fails});
}

std::vector<std::string> Faults::List() const {
    std::vector<std::string> commands;
    for (const kernel::CallFault& fault : calls())
        commands.push_back(CommandOf(fault));
    {
        const std::scoped_lock lock(mutex_);
        for (const auto& [name, faults] : drivers_) {
            const std::string command = "fault driver " + kernel::ToUtf8(name);
            if (faults.hidden_until == kernel::kNever)
                commands.push_back(command + " missing");
            else if (faults.hidden_until > kernel::Now())
                commands.push_back(command + " late " +
                                   control::DurationWord(faults.hidden_until - kernel::Now()));
            for (const DriverRefusal& refusal : faults.refusals)
                commands.push_back(command + CommandOf(refusal));
        }
    }
    if (hal_refuses_)
        commands.emplace_back("fault hal refuses");
    if (battery_driver_fails_)
        commands.emplace_back("fault battery-driver fails");
    for (const LineFaults::Entry& entry : line_->List())
        commands.push_back("fault line " + ToText(entry.rule));
    if (dvr_)
        std::ranges::move(dvrsim::FaultCommands(dvr_->GetFaults()), std::back_inserter(commands));
    return commands;
}

void Faults::Clear() {
    kernel::ClearCallFaults();
    {
        const std::scoped_lock lock(mutex_);
        drivers_.clear();
    }
    SetHalRefuses(false);
    SetBatteryDriverFails(false);
    line_->Clear();
    if (dvr_)
        dvr_->SetFaults({});
}

}  // namespace unit
