#include <vector>

#include "platform/kernel/api_call.h"
#include "platform/kernel/kernel.h"
#include "platform/window/class_registry.h"

using namespace platform;
using namespace platform::window;

namespace {

constexpr UINT kFirstNumber = 0xC000;
constexpr UINT kLastNumber = 0xFFFF;

// A number holds for the life of the process: whoever has it keeps it in a global.
std::vector<std::wstring>& Names(kernel::KernelLock&) {
    static std::vector<std::wstring> names;
    return names;
}

}  // namespace

namespace platform::window {

std::wstring RegisteredMessageName(UINT message) {
    kernel::KernelLock lock = kernel::LockKernel();
    const auto& names = Names(lock);
    return message >= kFirstNumber && message - kFirstNumber < names.size()
               ? names[message - kFirstNumber]
               : std::wstring();
}

}  // namespace platform::window

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
        if (EqualIgnoringCase(names[index], text))
            return kFirstNumber + static_cast<UINT>(index);
    if (names.size() > kLastNumber - kFirstNumber) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return 0;
    }
    names.emplace_back(text);
    return kFirstNumber + static_cast<UINT>(names.size()) - 1;
}
