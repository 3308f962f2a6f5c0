#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/window/class_registry.h"
#include "platform/window/neighbour_windows.h"

namespace platform::window {
namespace {

using Name = std::optional<std::wstring_view>;

bool Fits(const Name& wanted, std::wstring_view name) {
    return !wanted || EqualIgnoringCase(*wanted, name);
}

HWND FindOwn(kernel::KernelLock& lock, const Name& class_name, const Name& title) {
    for (const auto& window : TheDesktop(lock).z_order)
        if (Fits(class_name, window->window_class->name) && Fits(title, window->title))
            return window->handle;
    return NULL;
}

}  // namespace

NeighbourWindow FindOwnWindow(const Name& class_name, const Name& title) {
    kernel::KernelLock lock = kernel::LockKernel();
    return reinterpret_cast<NeighbourWindow>(FindOwn(lock, class_name, title));
}

bool HasWindow(NeighbourWindow window) {
    kernel::KernelLock lock = kernel::LockKernel();
    return FindWindowObject(lock, reinterpret_cast<HWND>(window)) != nullptr;
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

// Case does not count in either name. This process's windows go before those of the neighbours.
// Leaves the last error alone when only the window is missing.
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
    const NeighbourWindow neighbour =
        named ? kernel::CurrentBoard().FindNeighbourWindow(wanted_class, wanted_title) : 0;
    lock.lock();
    if (neighbour != 0)
        return NeighbourHandle(lock, neighbour);
    if (class_name && !window_class)
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
    return NULL;
}

BOOL IsWindow(HWND handle) {
    const kernel::ApiCall call;
    kernel::KernelLock lock = kernel::LockKernel();
    if (FindWindowObject(lock, handle))
        return TRUE;
    const NeighbourWindow neighbour = NeighbourBehind(lock, handle);
    if (neighbour == 0)
        return FALSE;
    lock.unlock();
    if (kernel::CurrentBoard().NeighbourWindowExists(neighbour))
        return TRUE;
    lock.lock();
    ForgetNeighbour(lock, handle);
    return FALSE;
}
