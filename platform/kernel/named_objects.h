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

// The object of that name; where there is none but a neighbour has one, a stand-in for that. It has
// the kind and keeps the name, and that is all: what is in the object is out of reach, so every
// other call refuses the stand-in's handle with ERROR_INVALID_HANDLE. The lock is let go of while a
// neighbour is asked.
std::shared_ptr<Object> FindNamedAnywhere(KernelLock& lock, const std::wstring& name);

// The common road of CreateEventW, CreateMutexW and CreateMsgQueue: the object of that name, a
// stand-in for a neighbour's, or what `make` makes. Sets ERROR_ALREADY_EXISTS when it existed,
// ERROR_INVALID_HANDLE (and returns null) when the name belongs to another kind, else
// ERROR_SUCCESS. The lock is let go of while a neighbour is asked.
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
