#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "platform/kernel/kernel_state.h"

namespace platform::kernel {

// The object of that name while any handle or thread keeps it, else null. All kinds share one name
// space, as on the device.
std::shared_ptr<Object> FindNamed(KernelLock& lock, const std::wstring& name);
void PublishName(KernelLock& lock, const std::wstring& name, const std::shared_ptr<Object>& object);

// The same; for an object of another process a stand-in. A stand-in has the kind and keeps the
// name, but not the state of the object: every other call refuses its handle with
// ERROR_INVALID_HANDLE. Releases the lock while it asks the other process.
std::shared_ptr<Object> FindNamedAnywhere(KernelLock& lock, const std::wstring& name);

// The common part of CreateEventW, CreateMutexW and CreateMsgQueue: the object of that name, a
// stand-in for one of another process, or a new object from `make`. Sets ERROR_ALREADY_EXISTS when
// it existed, ERROR_INVALID_HANDLE (and returns null) when the name belongs to another kind, else
// ERROR_SUCCESS. Releases the lock while it asks another process.
template <class Make>
std::shared_ptr<Object> CreateNamed(KernelLock& lock, const wchar_t* name, NamedKind kind,
                                    Make make) {
    const std::wstring key = name ? name : L"";
    if (!key.empty()) {
        if (std::shared_ptr<Object> existing = FindNamedAnywhere(lock, key)) {
            const bool same = existing->Kind() == kind;
            SetLastError(same ? ERROR_ALREADY_EXISTS : ERROR_INVALID_HANDLE);
            return same ? existing : nullptr;
        }
    }
    std::shared_ptr<Object> object = make();
    if (!key.empty())
        PublishName(lock, key, object);
    SetLastError(ERROR_SUCCESS);
    return object;
}

}  // namespace platform::kernel
