#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/resource/resource_name.h"
#include "platform/window/activation.h"
#include "platform/window/class_registry.h"
#include "platform/window/desktop.h"

namespace platform::window {
namespace {

using Name = std::optional<std::wstring_view>;

constexpr UINT_PTR kWithOwnedWindows = 1;

bool Matches(const Name& wanted, std::wstring_view name) {
    return !wanted || resource::SameText(*wanted, name);
}

HWND FindOwn(kernel::KernelLock& lock, const Name& class_name, const Name& title) {
    for (const auto& window : TheDesktop(lock).z_order)
        if (Matches(class_name, window->window_class->name) && Matches(title, window->title))
            return window->handle;
    return NULL;
}

// The highest visible and enabled window among a window and those it owns; itself if there is none.
HWND HighestOf(kernel::KernelLock& lock, HWND root) {
    for (const auto& window : TheDesktop(lock).z_order) {
        if (!window->visible() || !window->enabled() || window->being_destroyed)
            continue;
        HWND each = window->handle;
        while (each != NULL && each != root) {
            const auto owned = FindWindowObject(lock, each);
            each = owned ? owned->owner : NULL;
        }
        if (each == root)
            return window->handle;
    }
    return root;
}

// False with the last error set when this process has no such window.
bool BringOwn(HWND root, bool with_owned) {
    HWND chosen = root;
    {
        kernel::KernelLock lock = kernel::LockKernel();
        const auto window = RequireWindow(lock, root);
        if (!window)
            return false;
        if (window->being_destroyed) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return false;
        }
        if (with_owned)
            chosen = HighestOf(lock, root);
    }
    BringForward(chosen, WA_ACTIVE);
    return true;
}

OtherProcessWindow FindOfOtherProcess(const Name& class_name, const Name& title) {
    OtherProcesses* const others = kernel::CurrentBoard().other_processes();
    return others ? others->FindWindow(class_name, title) : 0;
}

// The same handle for the same window every time.
HWND HandleOf(kernel::KernelLock& lock, OtherProcessWindow window) {
    auto& known = TheDesktop(lock).other_process_windows;
    std::uintptr_t handle = 0;
    known.ForEach([&](std::uintptr_t value, const std::shared_ptr<OtherProcessWindow>& each) {
        if (*each == window)
            handle = value;
    });
    if (handle == 0)
        handle = known.Insert(std::make_shared<OtherProcessWindow>(window));
    return reinterpret_cast<HWND>(handle);
}

}  // namespace

OtherProcessWindow FindOwnWindow(const Name& class_name, const Name& title) {
    kernel::KernelLock lock = kernel::LockKernel();
    return reinterpret_cast<OtherProcessWindow>(FindOwn(lock, class_name, title));
}

bool BringOwnForward(OtherProcessWindow window, bool with_owned) {
    const DWORD last_error = GetLastError();
    const bool there = BringOwn(reinterpret_cast<HWND>(window), with_owned);
    SetLastError(last_error);
    return there;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

// Upper and lower case are the same in both names. Windows of this process go before those of other
// processes. Leaves the last error alone when only the window is missing.
HWND FindWindowW(LPCWSTR class_name, LPCWSTR title) {
    const kernel::ApiCall call("FindWindowW");
    if (call.Fails())
        return NULL;
    const Name wanted_title = title ? Name(title) : std::nullopt;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto window_class = class_name ? FindClass(lock, class_name) : nullptr;
    Name wanted_class;
    if (window_class)
        wanted_class = window_class->name;
    else if (class_name && !IS_INTRESOURCE(class_name))
        wanted_class = class_name;
    const bool named = !class_name || wanted_class;
    if (const HWND own = named ? FindOwn(lock, wanted_class, wanted_title) : NULL)
        return own;
    lock.unlock();
    const OtherProcessWindow other = named ? FindOfOtherProcess(wanted_class, wanted_title) : 0;
    lock.lock();
    if (other != 0)
        return HandleOf(lock, other);
    if (class_name && !window_class)
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
    return NULL;
}

// As on Windows CE, a handle with its lowest bit set brings the windows that the window owns
// forward too. The highest of them gets the foreground: a dialog, while its owner is disabled.
BOOL SetForegroundWindow(HWND handle) {
    const kernel::ApiCall call("SetForegroundWindow");
    if (call.Fails())
        return FALSE;
    const UINT_PTR value = reinterpret_cast<UINT_PTR>(handle) & ~kWithOwnedWindows;
    const bool with_owned = (reinterpret_cast<UINT_PTR>(handle) & kWithOwnedWindows) != 0;
    kernel::KernelLock lock = kernel::LockKernel();
    const auto other = TheDesktop(lock).other_process_windows.Find(value);
    lock.unlock();
    if (!other)
        return BringOwn(reinterpret_cast<HWND>(value), with_owned);
    OtherProcesses* const others = kernel::CurrentBoard().other_processes();
    if (others && others->BringForward(*other, with_owned))
        return TRUE;
    lock.lock();
    TheDesktop(lock).other_process_windows.Remove(value);
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return FALSE;
}
