#include <functional>
#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/kernel/scheduler.h"
#include "platform/resource/resource_name.h"
#include "platform/window/desktop.h"
#include "platform/window/procedure.h"

namespace platform::window {
namespace {

constexpr UINT kFirstNumber = 0xC000;
constexpr UINT kLastNumber = 0xFFFF;

// A number is valid for the life of the process, as programs keep it in a global.
std::vector<std::wstring>& Names(kernel::KernelLock&) {
    static std::vector<std::wstring> names;
    return names;
}

}  // namespace

void PostToAll(UINT message, WPARAM wparam, LPARAM lparam) {
    kernel::KernelLock lock = kernel::LockKernel();
    for (const auto& window : TheDesktop(lock).z_order)
        Post(lock, *window->queue, window->handle, message, wparam, lparam);
}

std::wstring RegisteredMessageName(UINT message) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto& names = Names(lock);
    return message >= kFirstNumber && message - kFirstNumber < names.size()
               ? names[message - kFirstNumber]
               : std::wstring();
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

namespace {

bool PostTo(kernel::KernelLock& lock, MessageQueue& queue, HWND window, UINT message, WPARAM wparam,
            LPARAM lparam) {
    if (Post(lock, queue, window, message, wparam, lparam))
        return true;
    SetLastError(ERROR_NOT_ENOUGH_QUOTA);
    return false;
}

// A full queue loses the broadcast; that is no error.
void Broadcast(UINT message, WPARAM wparam, LPARAM lparam) {
    PostToAll(message, wparam, lparam);
    std::function<void(UINT, WPARAM, LPARAM)> observer;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        observer = TheDesktop(lock).broadcast_observer;
    }
    if (observer)
        observer(message, wparam, lparam);
}

}  // namespace

BOOL PostMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("PostMessageW");
    if (call.Fails())
        return FALSE;
    if (window == HWND_BROADCAST) {
        Broadcast(message, wparam, lparam);
        return TRUE;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    if (window == NULL)
        return PostTo(lock, *CurrentQueue(lock), NULL, message, wparam, lparam);
    const auto target = RequireWindow(lock, window);
    return target && PostTo(lock, *target->queue, window, message, wparam, lparam);
}

VOID PostQuitMessage(int exit_code) {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    CurrentQueue(lock)->quit_code = exit_code;
}

namespace {

LRESULT SendToAll(UINT message, WPARAM wparam, LPARAM lparam) {
    std::vector<HWND> windows;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        for (const auto& window : TheDesktop(lock).z_order)
            windows.push_back(window->handle);
    }
    for (const HWND window : windows) {
        LRESULT ignored = 0;
        SendAndWait(window, message, wparam, lparam, ignored);
    }
    return TRUE;
}

}  // namespace

LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const kernel::ApiCall call("SendMessageW");
    if (call.Fails())
        return 0;
    if (window == HWND_BROADCAST)
        return SendToAll(message, wparam, lparam);
    LRESULT result = 0;
    SendAndWait(window, message, wparam, lparam, result);
    return result;
}

UINT RegisterWindowMessageW(LPCWSTR text) {
    const kernel::ApiCall call("RegisterWindowMessageW");
    if (call.Fails())
        return 0;
    if (!text || *text == L'\0') {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    auto& names = Names(lock);
    for (std::size_t index = 0; index < names.size(); ++index)
        if (resource::SameText(names[index], text))
            return kFirstNumber + static_cast<UINT>(index);
    if (names.size() > kLastNumber - kFirstNumber) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    names.emplace_back(text);
    return kFirstNumber + static_cast<UINT>(names.size()) - 1;
}
