#include "unit/board/driver_registry.h"

#include <cstdio>

#include "platform/kernel/text.h"
#include "unit/board/watched_driver.h"

namespace unit {

namespace kernel = platform::kernel;
using platform::device::StreamDriver;

void DriverRegistry::Put(std::wstring name, std::shared_ptr<StreamDriver> driver) {
    const std::scoped_lock lock(mutex_);
    slots_[std::move(name)].driver = std::move(driver);
}

void DriverRegistry::Load(std::wstring name, std::shared_ptr<StreamDriver> driver) {
    auto watched = WatchDriver(*this, name, std::move(driver), true);
    Put(std::move(name), std::move(watched));
}

void DriverRegistry::LoadSerial(std::wstring name, std::shared_ptr<StreamDriver> driver) {
    auto watched = WatchDriver(*this, name, std::move(driver), false);
    Put(std::move(name), std::move(watched));
}

std::shared_ptr<StreamDriver> DriverRegistry::Find(std::wstring_view name) {
    {
        const std::scoped_lock lock(mutex_);
        const auto slot = slots_.find(name);
        if (slot != slots_.end() && slot->second.driver &&
            kernel::Now() >= slot->second.hidden_until)
            return slot->second.driver;
    }
    Tell({std::wstring(name), DriverCalled::Call::kOpen, 0, {}, ERROR_DEV_NOT_EXIST});
    return nullptr;
}

std::vector<std::wstring> DriverRegistry::Names() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::wstring> names;
    names.reserve(slots_.size());
    for (const auto& [name, slot] : slots_)
        names.push_back(name);
    return names;
}

void DriverRegistry::HideUntil(std::wstring_view name, kernel::Time time) {
    const std::scoped_lock lock(mutex_);
    if (const auto slot = slots_.find(name); slot != slots_.end())
        slot->second.hidden_until = time;
}

void DriverRegistry::Refuse(std::wstring_view name, std::optional<DWORD> code, DWORD error,
                            unsigned times) {
    const std::scoped_lock lock(mutex_);
    if (const auto slot = slots_.find(name); slot != slots_.end())
        slot->second.refusing = Refusing{code, error, times};
}

void DriverRegistry::Clear() {
    const std::scoped_lock lock(mutex_);
    for (auto& [name, slot] : slots_) {
        slot.hidden_until = {};
        slot.refusing.reset();
    }
}

std::vector<std::string> DriverRegistry::Faults() const {
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> faults;
    for (const auto& [name, slot] : slots_) {
        const std::string driver = kernel::ToUtf8(name);
        if (slot.hidden_until == kernel::kNever)
            faults.push_back(driver + " missing");
        else if (slot.hidden_until > kernel::Now())
            faults.push_back(driver + " appears late");
        if (slot.refusing && slot.refusing->times > 0) {
            char code[24] = "";
            if (slot.refusing->code)
                std::snprintf(code, sizeof code, " 0x%X", *slot.refusing->code);
            faults.push_back(driver + " refuses" + code + " " +
                             std::to_string(slot.refusing->times) + " times");
        }
    }
    return faults;
}

DWORD DriverRegistry::Refusal(const std::wstring& name, DWORD code) {
    const std::scoped_lock lock(mutex_);
    const auto slot = slots_.find(name);
    if (slot == slots_.end() || !slot->second.refusing)
        return ERROR_SUCCESS;
    Refusing& refusing = *slot->second.refusing;
    if (refusing.times == 0 || (refusing.code && *refusing.code != code))
        return ERROR_SUCCESS;
    --refusing.times;
    return refusing.error;
}

}  // namespace unit
