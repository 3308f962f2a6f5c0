#include "platform/window/class_registry.h"

#include <algorithm>

#include "platform/kernel/api_call.h"
#include "platform/resource/resource_name.h"

namespace platform::window {
namespace {

constexpr ATOM kFirstAtom = 0xC000;
constexpr int kMaxExtraBytes = 4096;

bool IsAtom(LPCWSTR name) {
    return reinterpret_cast<UINT_PTR>(name) <= 0xFFFF;
}

void Add(kernel::KernelLock& lock, const WNDCLASSW& settings, std::wstring name, ATOM atom) {
    auto entry = std::make_shared<WindowClass>();
    entry->name = std::move(name);
    entry->atom = atom;
    entry->settings = settings;
    entry->settings.lpszMenuName = nullptr;
    entry->settings.lpszClassName = entry->name.c_str();
    TheDesktop(lock).classes.push_back(std::move(entry));
}

}  // namespace

std::shared_ptr<WindowClass> FindClass(kernel::KernelLock& lock, LPCWSTR name) {
    const auto& classes = TheDesktop(lock).classes;
    const auto found = std::find_if(classes.begin(), classes.end(), [&](const auto& entry) {
        return IsAtom(name) ? entry->atom == LOWORD(name) : resource::SameText(entry->name, name);
    });
    return found == classes.end() ? nullptr : *found;
}

void RegisterSystemClasses(kernel::KernelLock& lock) {
    WNDCLASSW dialog{};
    dialog.lpfnWndProc = DialogClassProcedure;
    dialog.cbWndExtra = DWLP_USER + static_cast<int>(sizeof(LONG_PTR));
    dialog.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{COLOR_BTNFACE + 1});
    Add(lock, dialog, L"Dialog", kDialogClass);
}

}  // namespace platform::window

using namespace platform;
using namespace platform::window;

ATOM RegisterClassW(const WNDCLASSW* settings) {
    const kernel::ApiCall call("RegisterClassW");
    if (call.Fails())
        return 0;
    if (!settings || !settings->lpfnWndProc || IsAtom(settings->lpszClassName) ||
        *settings->lpszClassName == L'\0' || settings->cbWndExtra < 0 ||
        settings->cbWndExtra > kMaxExtraBytes) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    // Menus and class bytes are not supported.
    if (settings->lpszMenuName || settings->cbClsExtra != 0) {
        SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
        return 0;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    if (FindClass(lock, settings->lpszClassName)) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    const ATOM atom = static_cast<ATOM>(kFirstAtom + ++TheDesktop(lock).last_atom);
    Add(lock, *settings, settings->lpszClassName, atom);
    return atom;
}

BOOL GetClassInfoW(HINSTANCE, LPCWSTR name, LPWNDCLASSW settings) {
    const kernel::ApiCall call("GetClassInfoW");
    if (call.Fails())
        return FALSE;
    if (!settings) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    kernel::KernelLock lock = kernel::LockKernel();
    const auto entry = name ? FindClass(lock, name) : nullptr;
    if (!entry) {
        SetLastError(ERROR_CLASS_DOES_NOT_EXIST);
        return FALSE;
    }
    *settings = entry->settings;
    return TRUE;
}
