#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "platform/kernel/kernel_state.h"

namespace platform::kernel {

// The object of that name while any handle or thread keeps it, else null. One name space for all
// kinds, as on the device.
std::shared_ptr<Object> FindNamed(KernelLock& lock, const std::wstring& name);
void PublishName(KernelLock& lock, const std::wstring& name, const std::shared_ptr<Object>& object);

// The common road of CreateEventW, CreateMutexW and CreateMsgQueue: opens the object of that name
// or makes one. Sets ERROR_ALREADY_EXISTS when it existed, ERROR_INVALID_HANDLE (and returns null)
// when the name belongs to another kind, else ERROR_SUCCESS.
template <class T, class Make>
std::shared_ptr<T> CreateNamed(KernelLock& lock, const wchar_t* name, Make make) {
    const std::wstring key = name ? name : L"";
    if (!key.empty()) {
        if (const std::shared_ptr<Object> existing = FindNamed(lock, key)) {
            auto object = std::dynamic_pointer_cast<T>(existing);
            SetLastError(object ? ERROR_ALREADY_EXISTS : ERROR_INVALID_HANDLE);
            return object;
        }
    }
    std::shared_ptr<T> object = make();
    if (!key.empty())
        PublishName(lock, key, object);
    SetLastError(ERROR_SUCCESS);
    return object;
}

}  // namespace platform::kernel
